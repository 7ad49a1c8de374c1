// SPDX-License-Identifier: MIT
#include "app/cash/cash_dialog.h"

#include "app/boxes/office_box.h"
#include "app/cash/cash_words.h"
#include "theme/dialogs.h"
#include "theme/measures.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

constexpr int gap = 8;
constexpr int waysInARow = 2;
constexpr int notesInARow = 4;

void setWord(QWidget &widget, const char *name, const QVariant &value)
{
    if (widget.property(name) == value)
        return;
    widget.setProperty(name, value);
    widget.style()->unpolish(&widget);
    widget.style()->polish(&widget);
}

QLabel *makeLine(QWidget *parent, const QString &name, const QString &styleWord)
{
    QLabel *label = makeOfficeText(parent, {});
    label->setObjectName(name);
    label->setProperty("styleWord", styleWord);
    label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long amount widens nothing
    return label;
}

/// Shows an amount. Its keys are the dialog's, which count wherever the focus is; a line that is read-only would keep
/// some of them.
class AmountLine final : public QLineEdit
{
public:
    explicit AmountLine(QWidget *parent) : QLineEdit(parent) { setReadOnly(true); }

protected:
    void keyPressEvent(QKeyEvent *event) override { event->ignore(); }
};

/// The names of the shop are no accelerators.
QString plainCaption(QString name)
{
    return name.replace(u'&', u"&&"_s);
}

} // namespace

CashDialog::CashDialog(Cents total, const CashChoices &choices, QWidget *parent) : QDialog(parent), m_tender(total)
{
    setObjectName(u"cashDialog"_s);
    setWindowTitle(u"Cash"_s);
    setProperty("large", parent != nullptr && densityOf(parent->size()) == Density::Large);
    enlargeFont(*this);
    createAmounts();
    layOut(choices);
    dressDialog(*this);
    setTabOrders();
    follow();
    m_given->setFocus();
}

void CashDialog::createAmounts()
{
    m_given = new AmountLine(this);
    m_given->setObjectName(u"cashGiven"_s);
    m_given->setAccessibleName(u"Cash given"_s);
    m_given->setProperty("styleWord", u"amount"_s);
    m_given->setAlignment(Qt::AlignRight);
    m_charged = makeLine(this, u"cashCharged"_s, {});
    m_change = makeLine(this, u"cashChange"_s, u"change"_s);
    m_change->setWordWrap(false);
    m_takeBack = makeKey(u"Take &Back"_s, u"cashTakeBack"_s, u"Take the last charge back"_s);
    QSizePolicy keepsItsRoom = m_takeBack->sizePolicy();
    keepsItsRoom.setRetainSizeWhenHidden(true);
    m_takeBack->setSizePolicy(keepsItsRoom);
    connect(m_takeBack, &QPushButton::clicked, this, [this] {
        m_tender.takeBack();
        follow();
    });
}

void CashDialog::layOut(const CashChoices &choices)
{
    auto *left = new QVBoxLayout;
    left->setSpacing(gap);
    left->addLayout(makeSum());
    left->addLayout(makeGiven());
    left->addWidget(m_change);
    left->addStretch(1);
    left->addLayout(makeWays(choices.ways));
    left->addLayout(makeNotes(choices.notes));
    auto *right = new QVBoxLayout;
    right->setSpacing(gap);
    right->addLayout(makeKeypad());
    right->addStretch(1);
    right->addLayout(makeEnd());
    auto *columns = new QHBoxLayout(this);
    columns->setContentsMargins(16, 16, 16, 16);
    columns->setSpacing(20);
    columns->addLayout(left, 1);
    columns->addLayout(right);
}

QLayout *CashDialog::makeSum()
{
    QLabel *total = makeLine(this, u"cashTotal"_s, u"sum"_s);
    total->setText(u"To pay: %1"_s.arg(centsText(m_tender.total())));
    auto *charged = new QHBoxLayout;
    charged->addWidget(m_charged, 1);
    charged->addWidget(m_takeBack);
    auto *rows = new QVBoxLayout;
    rows->setSpacing(gap);
    rows->addWidget(total);
    rows->addLayout(charged);
    return rows;
}

QLayout *CashDialog::makeGiven()
{
    auto *caption = new QLabel(u"Given:"_s, this);
    caption->setProperty("styleWord", u"sum"_s);
    caption->setBuddy(m_given);
    auto *row = new QHBoxLayout;
    row->setSpacing(gap);
    row->addWidget(caption);
    row->addWidget(m_given, 1);
    return row;
}

QLayout *CashDialog::makeWays(const QStringList &ways)
{
    auto *grid = new QGridLayout;
    grid->setSpacing(gap);
    for (int i = 0; i < ways.size(); ++i) {
        const QString &way = ways.at(i);
        QPushButton *button = makeKey(plainCaption(way), u"cashWay_%1"_s.arg(i), u"Pay by %1"_s.arg(way));
        button->setProperty("styleWord", u"way"_s);
        connect(button, &QPushButton::clicked, this, [this, way] { charge(way); });
        grid->addWidget(button, i / waysInARow, i % waysInARow);
    }
    return grid;
}

QLayout *CashDialog::makeNotes(const QList<Cents> &notes)
{
    auto *grid = new QGridLayout;
    grid->setSpacing(gap);
    for (int i = 0; i < notes.size(); ++i) {
        const Cents note = notes.at(i);
        QPushButton *button = makeKey(noteText(note), u"cashNote_%1"_s.arg(i), u"A note of %1"_s.arg(noteText(note)));
        button->setProperty("styleWord", u"note"_s);
        connect(button, &QPushButton::clicked, this, [this, note] {
            m_tender.addNote(note);
            follow();
        });
        grid->addWidget(button, i / notesInARow, i % notesInARow);
    }
    QPushButton *exact = makeKey(u"&Exact"_s, u"cashExact"_s, u"Exactly what is to pay"_s);
    exact->setProperty("styleWord", u"note"_s);
    connect(exact, &QPushButton::clicked, this, [this] {
        m_tender.giveExactly();
        follow();
    });
    const int place = static_cast<int>(notes.size());
    const int column = place % notesInARow;
    grid->addWidget(exact, place / notesInARow, column, 1, notesInARow - column);
    return grid;
}

QLayout *CashDialog::makeKeypad()
{
    struct Key
    {
        const char16_t *caption;
        const char16_t *types; ///< null: takes the last one back
        const char16_t *spoken;
    };
    static constexpr Key keys[] = {{u"7", u"7", u"7"},
                                   {u"8", u"8", u"8"},
                                   {u"9", u"9", u"9"},
                                   {u"4", u"4", u"4"},
                                   {u"5", u"5", u"5"},
                                   {u"6", u"6", u"6"},
                                   {u"1", u"1", u"1"},
                                   {u"2", u"2", u"2"},
                                   {u"3", u"3", u"3"},
                                   {u"0", u"0", u"0"},
                                   {u"00", u"00", u"Double zero"},
                                   {u"\u2190", nullptr, u"Take the last key back"}};
    constexpr int keysInARow = 3;
    auto *grid = new QGridLayout;
    grid->setSpacing(gap);
    int place = 0;
    for (const Key &key : keys) {
        const QString types = key.types != nullptr ? QString::fromUtf16(key.types) : QString();
        QPushButton *button =
            makeKey(QString::fromUtf16(key.caption), u"cashKey_"_s + (types.isEmpty() ? u"back"_s : types),
                    QString::fromUtf16(key.spoken));
        button->setProperty("styleWord", u"digit"_s);
        button->setAutoRepeat(types.isEmpty());
        connect(button, &QPushButton::clicked, this, [this, types] {
            if (types.isEmpty())
                m_tender.erase();
            else
                type(types);
            follow();
        });
        grid->addWidget(button, place / keysInARow, place % keysInARow);
        ++place;
    }
    return grid;
}

QLayout *CashDialog::makeEnd()
{
    m_pay = new QPushButton(u"&Pay"_s, this);
    m_pay->setObjectName(u"payCash"_s);
    m_pay->setDefault(true);
    makePrimary(*m_pay);
    connect(m_pay, &QPushButton::clicked, this, &CashDialog::pay);
    auto *cancel = new QPushButton(u"Cancel"_s, this);
    cancel->setObjectName(u"cancelCash"_s);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    auto *row = new QHBoxLayout;
    row->setSpacing(gap);
    row->addWidget(m_pay, 1);
    row->addWidget(cancel);
    return row;
}

/// Enter pays while it has the focus; the space bar presses it. A finger on it does not take the focus away.
QPushButton *CashDialog::makeKey(const QString &caption, const QString &name, const QString &spoken)
{
    auto *button = new QPushButton(caption, this);
    button->setObjectName(name);
    button->setAccessibleName(spoken);
    button->setAutoDefault(false);
    button->setFocusPolicy(Qt::TabFocus);
    m_keys << button;
    return button;
}

/// The amount first, then what is pressed most.
void CashDialog::setTabOrders()
{
    QWidget *before = m_given;
    for (QPushButton *key : std::as_const(m_keys)) {
        setTabOrder(before, key);
        before = key;
    }
    setTabOrder(before, m_pay);
    setTabOrder(m_pay, findChild<QPushButton *>(u"cancelCash"_s));
}

void CashDialog::keyPressEvent(QKeyEvent *event)
{
    const bool isPlain = (event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) == Qt::NoModifier;
    if (isPlain && type(event->text()))
        return follow();
    switch (event->key()) {
    case Qt::Key_Backspace:
        m_tender.erase();
        return follow();
    case Qt::Key_Delete:
        m_tender.clear();
        return follow();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if (!event->isAutoRepeat())
            pay();
        return;
    default:
        QDialog::keyPressEvent(event);
    }
}

/// False where none of it is a key of an amount.
bool CashDialog::type(const QString &keys)
{
    bool isTaken = false;
    for (const QChar key : keys)
        isTaken = m_tender.type(key) || isTaken;
    return isTaken;
}

void CashDialog::charge(const QString &way)
{
    const Tender::Charged charged = m_tender.charge(way);
    follow();
    if (charged == Tender::Charged::TooMuch)
        showOutcome(*m_charged,
                    u"\u26a0 No more than %1 is to pay: %2 gives no change."_s.arg(centsText(m_tender.due()), way));
    else if (charged == Tender::Charged::NothingDue)
        showOutcome(*m_charged, u"\u26a0 Nothing more is to pay."_s);
}

void CashDialog::follow()
{
    m_given->setText(centsText(m_tender.given()));
    m_charged->setText(chargedWords(m_tender.charged()));
    m_takeBack->setVisible(!m_tender.charged().isEmpty());
    m_pay->setEnabled(m_tender.isEnough());
    tellChange();
}

/// Told to a screen reader each time, beside what it reads of the entry.
void CashDialog::tellChange()
{
    const bool isEnough = m_tender.isEnough();
    const QString text = isEnough ? u"Change: %1"_s.arg(centsText(m_tender.change()))
                                  : u"Still to pay: %1"_s.arg(centsText(-m_tender.change()));
    constexpr qsizetype mostLarge = 16; // characters, "Change: 1,234.56"
    setWord(*m_change, "small", !isEnough || text.size() > mostLarge);
    setWord(*m_change, "missing", !isEnough);
    showOutcome(*m_change, text);
}

void CashDialog::pay()
{
    if (m_tender.isEnough())
        accept();
    else
        tellChange();
}

} // namespace harrowby::app
