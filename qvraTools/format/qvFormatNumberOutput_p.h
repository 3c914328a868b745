/* qvFormatNumberOutput_p.h - numbers put into an output. */
#ifndef QVRATOOLS_FORMAT_QVFORMATNUMBEROUTPUT_P_H
#define QVRATOOLS_FORMAT_QVFORMATNUMBEROUTPUT_P_H

#include <wchar.h>

#include "qvraTools/format/qvFormatDirective_p.h"
#include "qvraTools/format/qvFormatOutput_p.h"

// d i u o x X
template <typename Char>
void qvFormatNumber_WriteInteger(const qvFormatDirective& aDirective, uint64 aValue,
                                 qvFormatOutput<Char>* anOutput);
// p, not null.
template <typename Char>
void qvFormatNumber_WritePointer(const qvFormatDirective& aDirective, const void* aValue,
                                 qvFormatOutput<Char>* anOutput);
// The two widths of e E f F g G a A. What they need is on the stack: 1 KB, and 16 KB for a long double of 80
// bits.
template <typename Char>
void qvFormatNumber_WriteDouble(const qvFormatDirective& aDirective, double aValue,
                                qvFormatOutput<Char>* anOutput);
template <typename Char>
void qvFormatNumber_WriteLongDouble(const qvFormatDirective& aDirective, long double aValue,
                                    qvFormatOutput<Char>* anOutput);

extern template void qvFormatNumber_WriteInteger(const qvFormatDirective&, uint64, qvFormatOutput<char>*);
extern template void qvFormatNumber_WriteInteger(const qvFormatDirective&, uint64, qvFormatOutput<wchar_t>*);
extern template void qvFormatNumber_WritePointer(const qvFormatDirective&, const void*,
                                                 qvFormatOutput<char>*);
extern template void qvFormatNumber_WritePointer(const qvFormatDirective&, const void*,
                                                 qvFormatOutput<wchar_t>*);
extern template void qvFormatNumber_WriteDouble(const qvFormatDirective&, double, qvFormatOutput<char>*);
extern template void qvFormatNumber_WriteDouble(const qvFormatDirective&, double, qvFormatOutput<wchar_t>*);
extern template void qvFormatNumber_WriteLongDouble(const qvFormatDirective&, long double,
                                                    qvFormatOutput<char>*);
extern template void qvFormatNumber_WriteLongDouble(const qvFormatDirective&, long double,
                                                    qvFormatOutput<wchar_t>*);

#endif
