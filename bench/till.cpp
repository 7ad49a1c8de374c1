// SPDX-License-Identifier: MIT
#include "bench/till.h"

#include "basic/quick_sale_page.h"
#include "bench/catalogue.h"
#include "bench/paint_watch.h"
#include "store/inv_basic.h"
#include "ui/widgets/pick_list.h"
#include "ui/widgets/quick_sale_button.h"
#include "ui/widgets/row_list.h"
#include "ui/widgets/tab_strip.h"
#include "ui/widgets/text_table_model.h"
#include "ui/work_areas.h"

#include <QCoreApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace harrowby::bench {

Till::Till(MeasuredStore &store, const QDateTime &now) :
    m_boxes(std::make_shared<YesBoxes>()),
    m_clock(std::make_shared<SteppedClock>(now)), m_platform{m_boxes, std::make_shared<FixedSettings>(),
                                                             std::make_shared<NoPrinters>(), m_clock,
                                                             std::make_shared<ObjectRegistry>()}
{
    m_connection = store.connect();
    use();
}

void Till::use()
{
    InvBasic::setConnection(m_connection);
}

Till::~Till()
{
    m_window.reset();
    InvBasic::setConnection(nullptr);
}

bool Till::open()
{
    m_window = std::make_unique<Inventory>(m_platform);
    m_window->load();
    PaintWatch watch{m_window.get(), m_window->controls().Command1.back()};
    m_window->show();
    return watch.wait();
}

void Till::close()
{
    m_window.reset();
}

void Till::repaint()
{
    m_window->repaint();
    QCoreApplication::processEvents();
}

bool Till::logIn()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.Command1.front()};
    controls.Text3->setText(QString::fromLatin1(userName));
    controls.Text4->setText(QString::fromLatin1(password));
    controls.Command28->click();
    return watch.wait() && m_window->state().login.IsLoggedIn;
}

bool Till::press(int button)
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.LV3->viewport(), controls.Label5};
    controls.Command1.at(static_cast<std::size_t>(button))->click();
    return watch.wait();
}

bool Till::nextPage()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.Command1.front(), controls.Command1.back()};
    controls.CmdNext->click();
    return watch.wait();
}

bool Till::previousPage()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.Command1.front(), controls.Command1.back()};
    controls.CmdPrev->click();
    return watch.wait();
}

bool Till::chooseCategory(const QString &category)
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.Command1.front(), controls.Command1.back()};
    controls.Combo1->setEntryText(category);
    return watch.wait();
}

double Till::refreshDashboard()
{
    const Stopwatch watch;
    m_window->controls().TabStrip1->selectTab(WorkArea::CustomSales);
    const double time = watch.milliseconds();
    QCoreApplication::processEvents();
    return m_window->controls().TabStrip1->selectedTab() == WorkArea::CustomSales ? time : -1.0;
}

double Till::commit()
{
    const Controls &controls = m_window->controls();
    PaintWatch watch{controls.Label6.at(3), controls.Label6.at(4), controls.Label6.at(8)};
    controls.Command14->click();
    return watch.wait() && cartLines() == 0 ? m_boxes->sinceYes().value_or(Stopwatch()).milliseconds() : -1.0;
}

bool Till::sell()
{
    m_window->controls().Command14->click();
    QCoreApplication::processEvents();
    return cartLines() == 0;
}

bool Till::fillCart(int lines)
{
    bool filled = firstPage();
    for (int line = 0; filled && line < lines; ++line)
        filled = (line == 0 || line % quickSaleButtons != 0 || nextPage()) && press(line % quickSaleButtons);
    return filled && cartLines() == lines;
}

int Till::lastButton() const
{
    return (cartLines() - 1) % quickSaleButtons;
}

bool Till::firstPage()
{
    bool turned = true;
    while (turned && m_window->state().QuickSalesOffset > 0)
        turned = previousPage();
    return turned;
}

void Till::emptyCart()
{
    if (cartLines() > 0)
        m_window->controls().Command13->click();
    QCoreApplication::processEvents();
}

int Till::cartLines() const
{
    return m_window->controls().LV3->rows().rowCount();
}

QStringList Till::keysInCart() const
{
    const TextTableModel &cart = m_window->controls().LV3->rows();
    QStringList keys;
    for (int row = 0; row < cart.rowCount(); ++row)
        keys.append(cart.text(row, 0));
    return keys;
}

} // namespace harrowby::bench
