// SPDX-License-Identifier: MIT
#include "app/errands/form_options.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

std::optional<QString> readFormOptions(const ErrandLine &line, CsvForm &form)
{
    if (line.options.contains(u"--separator"_s)) {
        const auto separator = separatorNamed(line.options.value(u"--separator"_s));
        if (!separator)
            return u"--separator takes %1."_s.arg(separatorNames);
        form.separator = *separator;
    }
    if (line.options.contains(u"--decimal"_s)) {
        const auto sign = decimalSignNamed(line.options.value(u"--decimal"_s));
        if (!sign)
            return u"--decimal takes %1."_s.arg(decimalSignNames);
        form.decimalSign = *sign;
    }
    return {};
}

} // namespace harrowby::app
