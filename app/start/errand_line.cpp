// SPDX-License-Identifier: MIT
#include "app/start/errand_line.h"

#include "app/csv/csv_form.h"
#include "app/shop/errand_names.h"

#include <QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

/// What can be typed for one errand.
struct ErrandForm
{
    struct Option
    {
        QString name;
        QString value; ///< what it needs, as in "--keep needs …"; empty for a switch
    };

    QString name;
    QStringList values; ///< what each stands for, as in "--backup needs …"
    QList<Option> options;
};

/// All errands there are.
const QList<ErrandForm> &errandForms()
{
    static const QList<ErrandForm> forms = {
        {errand::backup, {u"the folder that the backup goes into"_s}, {{u"--keep"_s, u"how many backups stay"_s}}},
        {errand::copyStore,
         {u"the store to copy, a file or a server such as service=NAME"_s,
          u"the place of the copy, behind the store"_s},
         {}},
        {errand::exportList,
         {u"what is exported (items, categories, codes, purchases or activity) and a file"_s,
          u"a file, behind what is exported"_s},
         {{u"--from"_s, u"a day"_s},
          {u"--to"_s, u"a day"_s},
          {u"--separator"_s, separatorNames},
          {u"--decimal"_s, decimalSignNames}}},
        {errand::importList,
         {u"the file that is imported"_s},
         {{u"--dry-run"_s, {}},
          {u"--kind"_s, u"items, categories or codes"_s},
          {u"--encoding"_s, encodingNames},
          {u"--separator"_s, separatorNames},
          {u"--decimal"_s, decimalSignNames},
          {u"--columns"_s, u"pairs such as StockCost=Price"_s},
          {u"--stock-in-hand"_s, {}},
          {u"--capitals"_s, {}},
          {u"--no-categories"_s, {}},
          {u"--valid-rows"_s, {}},
          {u"--as-stored"_s, {}}}},
        {errand::restore, {u"the backup that is to be brought back"_s}, {}},
    };
    return forms;
}

const ErrandForm *formOf(const QString &name)
{
    const auto &forms = errandForms();
    const auto found = std::ranges::find(forms, name, &ErrandForm::name);
    return found == forms.end() ? nullptr : &*found;
}

const ErrandForm::Option *optionOf(const ErrandForm &form, const QString &name)
{
    const auto found = std::ranges::find(form.options, name, &ErrandForm::Option::name);
    return found == form.options.end() ? nullptr : &*found;
}

/// The errands that this option goes with, "--export and --import".
QString ownersOf(const QString &option)
{
    QStringList owners;
    for (const ErrandForm &form : errandForms()) {
        if (optionOf(form, option) != nullptr)
            owners << form.name;
    }
    return owners.join(u" and "_s);
}

} // namespace

std::optional<QStringList> ErrandLineReader::valuesOf(const QString &option)
{
    if (const ErrandForm *form = formOf(option))
        return form->values;
    for (const ErrandForm &form : errandForms()) {
        if (const auto *known = optionOf(form, option))
            return known->value.isEmpty() ? QStringList() : QStringList(known->value);
    }
    return {};
}

QString ErrandLineReader::take(const QString &option, const QStringList &values)
{
    const QStringList needed = valuesOf(option).value_or(QStringList());
    for (qsizetype at = 0; at < needed.size(); ++at) {
        // Two hyphens begin the next option, so the value was forgotten.
        if (values.value(at).isEmpty() || values.at(at).startsWith(u"--"_s))
            return u"%1 needs %2."_s.arg(option, needed.at(at));
    }
    if (values.size() > needed.size())
        return u"%1 takes no value."_s.arg(option);
    if (formOf(option) != nullptr) {
        if (m_line.isGiven())
            return u"%1 and %2 do not go together: one at a time."_s.arg(m_line.name, option);
        m_line.name = option;
        m_line.values = values;
        return {};
    }
    if (m_line.options.contains(option))
        return u"%1 is given twice."_s.arg(option);
    m_line.options.insert(option, values.value(0));
    return {};
}

Result<ErrandLine, QString> ErrandLineReader::finish() const
{
    const ErrandForm *form = formOf(m_line.name);
    for (const QString &option : m_line.options.keys()) {
        if (form == nullptr || optionOf(*form, option) == nullptr)
            return Unexpected(u"%1 goes with %2 only."_s.arg(option, ownersOf(option)));
    }
    return m_line;
}

} // namespace harrowby::app
