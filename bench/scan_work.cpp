// SPDX-License-Identifier: MIT
#include "bench/scan_work.h"

#include "app/records/sqlite_records.h"
#include "app/till/till.h"
#include "basic/item_key.h"
#include "bench/measuring.h"
#include "bench/paint_watch.h"
#include "bench/statement_lists.h"
#include "bench/till.h"
#include "engine/database.h"
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
    explicit Parts(sqlite3 *database) :
        m_records(database), m_till(Counter::instance(), m_records, {longestGap, {}}, [] {})
    {
    }

private:
    app::SqliteRecords m_records;
    app::Till m_till;
};

ScanDesk::ScanDesk(sqlite3 *database, Till &till) : m_database(database), m_till(till)
{
    for (const QString &making : app::kept::code().making)
        require(!runSql(database, making), u"the table of codes"_s);
    require(!runSql(database, u"insert or ignore into HarrowbyCode select printf('%014d', rowid), StockID, 1 "
                              "from StockList"_s),
            u"codes for all items"_s);
    m_parts = std::make_unique<Parts>(database);
    QCoreApplication::processEvents(); // the banner is painted
}

ScanDesk::~ScanDesk() = default;

QString ScanDesk::codeOf(const QString &key) const
{
    return readText(m_database, u"select Code from HarrowbyCode where StockID = ?1"_s, {GetIDName(key, KeyPiece::Id)});
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
                          {code.toUtf8()}}} +
           pressStatements(key, now);
}

} // namespace harrowby::bench
