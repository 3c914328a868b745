/* qvFormatText_p.h - texts and characters: copied within their own width, converted between the two. */
#ifndef QVRATOOLS_FORMAT_QVFORMATTEXT_P_H
#define QVRATOOLS_FORMAT_QVFORMATTEXT_P_H

#include <wchar.h>

#include "qvraTools/format/qvFormatDirective_p.h"
#include "qvraTools/format/qvFormatOutput_p.h"

// "%s" and "%ls", not null.
void qvFormatText_Write(const qvFormatDirective& aDirective, const char* aText,
                        qvFormatOutput<char>* anOutput);
void qvFormatText_Write(const qvFormatDirective& aDirective, const char* aText,
                        qvFormatOutput<wchar_t>* anOutput);
void qvFormatText_Write(const qvFormatDirective& aDirective, const wchar_t* aText,
                        qvFormatOutput<char>* anOutput);
void qvFormatText_Write(const qvFormatDirective& aDirective, const wchar_t* aText,
                        qvFormatOutput<wchar_t>* anOutput);

// "%c" and "%lc".
void qvFormatText_WriteCharacter(const qvFormatDirective& aDirective, uint32 aChar,
                                 qvFormatOutput<char>* anOutput);
void qvFormatText_WriteCharacter(const qvFormatDirective& aDirective, uint32 aChar,
                                 qvFormatOutput<wchar_t>* anOutput);

// The text of a null pointer: "(nil)" under width and precision.
template <typename Char>
void qvFormatText_WriteNull(const qvFormatDirective& aDirective, qvFormatOutput<Char>* anOutput);

#endif
