// SPDX-License-Identifier: MIT
#include "bench/scan_work.h"

#include "app/records/records.h"
#include "app/till/till.h"
#include "basic/item_key.h"
#include "bench/measured_store.h"
#include "bench/measuring.h"
#include "bench/paint_watch.h"
#include "bench/statement_lists.h"
#include "bench/till.h"
#include "store/statement_texts.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"

#include <harrowby/counter.h>

#include <QCoreApplication>
#include <QLabel>
#include <QWindow>

// A key of the window system, with the time of now. Qt Gui exports it for Qt Test; the public way to it is a library
// that the benchmark does without.
QT_BEGIN_NAMESPACE
Q_GUI_EXPORT bool qt_handleKeyEvent(QWindow *window, QEvent::Type type, int key, Qt::KeyboardModifiers modifiers,
                                    const QString &text, bool repeated, ushort count);
QT_END_NAMESPACE

using namespace Qt::StringLiterals;

namespace harrowby::bench {

namespace {

/// The longest gap between two keys of a code that can be set: the machine may be busy with something else meanwhile.
QString longestGap(const QString &section, const QString &key, const QString &otherwise)
{
    return section == "Readers"_L1 && key == "Gap"_L1 ? QString::number(CodeReaderSettings::GreatestGapMs) : otherwise;
}

void press(QWindow *window, int key, const QString &text)
{
    qt_handleKeyEvent(window, QEvent::KeyPress, key, Qt::NoModifier, text, false, 1);
    qt_handleKeyEvent(window, QEvent::KeyRelease, key, Qt::NoModifier, text, false, 1);
}

} // namespace

class ScanDesk::Parts
{
public:
    explicit Parts(std::unique_ptr<app::Records> records) :
        m_records(std::move(records)), m_till(Counter::instance(), *m_records, {longestGap, {}}, [] {})
    {
    }

    [[nodiscard]] app::Records &records() { return *m_records; }

private:
    std::unique_ptr<app::Records> m_records;
    app::Till m_till;
};

ScanDesk::ScanDesk(MeasuredStore &store, Till &till) : m_till(till)
{
    auto records = store.records();
    const QString row = records->dialect().rowId;
    const auto made =
        records->write(app::kept::code(), {u"insert into HarrowbyCode (Code, StockID, Units) select "
                                           "substr(cast(100000000000000 + %1 as text), 2), StockID, 1 from StockList "
                                           "where true on conflict do nothing"_s.arg(row),
                                           {}});
    require(made.has_value(), u"codes for all items"_s);
    m_parts = std::make_unique<Parts>(std::move(records));
    QCoreApplication::processEvents(); // the banner is painted
}

ScanDesk::~ScanDesk() = default;

QString ScanDesk::codeOf(const QString &key) const
{
    const auto codes =
        m_parts->records().read(app::kept::code(), {u"select Code from HarrowbyCode where StockID = ? order by Code"_s,
                                                    {GetIDName(key, KeyPiece::Id)}});
    require(codes && !codes->isEmpty(), u"the item's code"_s);
    return app::recordText(codes->constFirst().constFirst());
}

void ScanDesk::type(const QString &code)
{
    Inventory &window = m_till.window();
    window.controls().Command1.front()->setFocus(); // a button is pressed by no key of a code
    for (const QChar sign : code)
        press(window.windowHandle(), sign.toUpper().unicode(), QString(sign));
}

bool ScanDesk::end()
{
    const Controls &controls = m_till.window().controls();
    PaintWatch watch{controls.LV3->viewport(), controls.Label5};
    press(m_till.window().windowHandle(), Qt::Key_Return, u"\r"_s);
    return watch.wait();
}

RawStatements ScanDesk::statements(const QString &code, const QString &key, const QDateTime &now)
{
    return RawStatements{{"select StockID, StockName, StockCost from StockList where StockID in (?)",
                          {"StockID", "StockName"},
                          {code.toUtf8()}},
                         {"select c.StockID, c.Units, s.StockName from HarrowbyCode c "
                          "left join StockList s on s.StockID = c.StockID where c.Code in (?)",
                          {"StockID", "Units", "StockName"},
                          {code.toUtf8()}},
                         readRows(statements::stockById(GetIDName(key, KeyPiece::Id)),
                                  {"StockID", "StockName", "StockUse", "StockAvailable", "StockCost"})} +
           pressStatements(key, now);
}

} // namespace harrowby::bench
