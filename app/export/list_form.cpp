// SPDX-License-Identifier: MIT
#include "app/export/list_form.h"

#include "app/records/shop_settings.h"

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr auto separatorSetting = "ExportSeparator"_L1;
constexpr auto decimalSetting = "ExportDecimalSign"_L1;

void keep(ShopSettings &settings, const QString &name, const QString &value)
{
    if (settings.value(name) != value)
        (void)settings.save(name, value);
}

} // namespace

CsvForm savedListForm(Records &records)
{
    const ShopSettings settings(records);
    CsvForm form;
    form.byteOrderMark = true;
    form.separator = separatorNamed(settings.value(separatorSetting)).value_or(form.separator);
    form.decimalSign = decimalSignNamed(settings.value(decimalSetting)).value_or(form.decimalSign);
    return form;
}

void keepListForm(Records &records, const CsvForm &form)
{
    ShopSettings settings(records);
    // A name, as a value of blanks alone would not be known again.
    keep(settings, separatorSetting, form.separator == u'\t' ? u"tab"_s : QString(form.separator));
    keep(settings, decimalSetting, form.decimalSign);
}

} // namespace harrowby::app
