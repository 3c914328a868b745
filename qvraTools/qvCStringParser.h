/* qvCStringParser.h - tokens of a text, trimming, lists in a text, wildcards, and escaped copies.
 *
 * Tokens point into the caller's text, which is never copied and must outlive their list. White space is what
 * qvConvert_isspace says; no locale is consulted. Texts given with a length need no terminator and may hold
 * zero bytes. Pointers handed in are not null, except where it is said. Any thread may call these functions;
 * one list belongs to one thread at a time. */
#ifndef QVRATOOLS_QVCSTRINGPARSER_H
#define QVRATOOLS_QVCSTRINGPARSER_H

#include "qvOS/qvTypes.h"

QV_BEGIN_DECLS

/* A part of the text, between two delimiters or at an end. */
typedef struct qvCStringParser_Token qvCStringParser_Token;

/* Callers may read the fields. */
struct qvCStringParser_Token {
  const char* mData;                 /* in the caller's text; not terminated */
  size_t mDataLength;                /* bytes                                */
  qvCStringParser_Token* mNextToken; /* null in the last token               */
};

/* The tokens of a text in their order; callers may read the fields. */
typedef struct qvCStringParser_TokenList {
  qvCStringParser_Token* mFirstToken; /* null without tokens */
  qvCStringParser_Token* mLastToken;  /* null without tokens */
  size_t mTokenCount;                 /* of all tokens       */
} qvCStringParser_TokenList;

/* The tokenizers return a new list, released with qvCStringParser_Delete. n delimiters give n + 1 tokens, and
 * an empty range gives one empty token. A delimiter of length 0 is never found. */

/* Splits aBuffer from anOffset up to aLength, which is the position of the end and not a count from the
 * offset. A delimiter right after anEscapeChar does not split; the escape character stays in the token.
 * anEscapeChar 0: every delimiter splits. */
QVLOG_API qvCStringParser_TokenList* qvCStringParser_TokenizeEscaped(const char* aBuffer, size_t anOffset,
                                                                     size_t aLength, const char* aDelimiter,
                                                                     size_t aDelimiterLength,
                                                                     char anEscapeChar);

/* qvCStringParser_TokenizeEscaped without an escape character. */
QVLOG_API qvCStringParser_TokenList* qvCStringParser_Tokenize(const char* aBuffer, size_t anOffset,
                                                              size_t aLength, const char* aDelimiter,
                                                              size_t aDelimiterLength);

/* Splits the aLength bytes from anOffset on at delimiters outside single and double quotes. The quotes stay
 * in the token. A closing quote ends its token, so in "'a',b" and "'a'b" the token 'a' is followed by a token
 * of its own: an empty one up to the delimiter, or b. An unclosed quote runs to the end.
 *
 * With an offset other than 0, delimiters are found only where they end at or before position aLength of
 * aBuffer; hand in aBuffer + offset with offset 0 to have all of them found. */
QVLOG_API qvCStringParser_TokenList* qvCStringParser_TokenizeQuoted(const char* aBuffer, size_t anOffset,
                                                                    size_t aLength, const char* aDelimiter,
                                                                    size_t aDelimiterLength);

/* qvCStringParser_TokenizeQuoted at ",", every token trimmed and without its quotes. */
QVLOG_API qvCStringParser_TokenList* qvCStringParser_TokenizeQuotedList(const char* aBuffer, size_t anOffset,
                                                                        size_t aLength);

/* qvCStringParser_TokenizeQuoted at " ", every token trimmed; those that are then empty are left out, the
 * others lose their quotes. So the list may be empty, and "" in the text gives an empty token. */
QVLOG_API qvCStringParser_TokenList* qvCStringParser_TokenizeParameterList(const char* aBuffer,
                                                                           size_t anOffset, size_t aLength);

/* Frees the list and its tokens; null is ignored. */
QVLOG_API void qvCStringParser_Delete(qvCStringParser_TokenList* aList);

/* Takes the white space off both ends of the token. */
QVLOG_API void qvCStringParser_TrimToken(qvCStringParser_Token* aToken);

/* Takes one pair of equal quotes, single or double, off the token; anything else stays as it is. */
QVLOG_API void qvCStringParser_TrimQuotes(qvCStringParser_Token* aToken);

/* 1 when one of the tokens of aListStr (qvCStringParser_TokenizeQuoted, trimmed, without quotes) is exactly
 * aValue, 0 otherwise. All three are terminated. */
QVLOG_API int qvCStringParser_ListContains(const char* aListStr, const char* aDelimiter, const char* aValue);

/* A new string, released with qvFree, of the aStrLen bytes at aStr without the white space at the ends that
 * are asked for; it ends at the first zero byte. A null aStr gives null, and fails an assertion unless
 * aStrLen is 0. */
QVLOG_API char* qvCStringParser_Trim(const char* aStr, size_t aStrLen, int afTrimLeft, int afTrimRight);

/* 1 when the text has at least 2 bytes and begins and ends with these characters, 0 otherwise or when aStr is
 * null. Unless afAllowLeftSurroundInStr is set, the left character must not stand between the two. */
QVLOG_API int qvCStringParser_IsSurrounded(const char* aStr, size_t aStrLen, char aLeftSurround,
                                           char aRightSurround, int afAllowLeftSurroundInStr);

/* 1 when one of the aStrLen bytes is in the terminated aChars, 0 otherwise. A zero byte counts as found. */
QVLOG_API int qvCStringParser_ContainsOneOf(const char* aStr, size_t aStrLen, const char* aChars);

/* A new string, released with qvFree: the left character, the aStrLen bytes of aStr, the right character. A
 * byte that is in the terminated aCharsToEscape (which is only read), or zero, gets a backslash in front of
 * it. anEscapeChar is ignored. */
QVLOG_API char* qvCStringParser_EscapeAndSurround(const char* aStr, size_t aStrLen, char* aCharsToEscape,
                                                  char anEscapeChar, char aLeftSurroundChar,
                                                  char aRightSurroundChar);

/* qvCStringParser_MatchEx up to the end of the text. */
QVLOG_API int qvCStringParser_Match(const char* aPattern, const char* aText);

/* 1 when the whole of aText, up to its end or to the first anEOLChar (0: none), matches the pattern; 0
 * otherwise.
 *
 *   ?      any one byte
 *   *      any bytes, or none
 *   [a-c]  one of these bytes; [^a-c] any other. A ']' or '-' that comes first is a member, and so is a '-'
 *          right before the closing ']'. The end of the pattern closes a class too.
 *   \x     the byte x
 *   x      the byte x, and never its other case, whatever afCaseRelevant is
 *
 * A pattern that does not begin with '*' or '?' matches only a text that begins with the pattern's very first
 * byte: one that begins with '[' or '\\' matches only a text that begins with that byte. */
QVLOG_API int qvCStringParser_MatchEx(const char* aPattern, const char* aText, int afCaseRelevant,
                                      char anEOLChar);

QV_END_DECLS

#endif
