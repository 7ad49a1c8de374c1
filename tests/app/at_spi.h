// SPDX-License-Identifier: MIT
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QSet>
#include <QString>
#include <QTemporaryDir>

#include <functional>
#include <optional>

namespace harrowby::app::test {

/// Where a thing is on the bus of the screen readers.
struct Address
{
    QString service;
    QDBusObjectPath path;
};

/// What a program tells a screen reader of one thing that is on the screen.
struct Part
{
    Address address;
    int parent = -1; ///< its place in the list that the part stands in
    QString role;    ///< AT-SPI's word for it: "push button", "page tab", ...
    QString name;
    QString description;
    QSet<int> states;
    QString labelledBy; ///< names of its labels, one a line

    [[nodiscard]] bool is(int state) const { return states.contains(state); }
};

/// AT-SPI's numbers of the states that are looked at.
enum State {
    Editable = 7,
    Enabled = 8,
    Focused = 12,
    Selected = 23,
    Showing = 25,
};

/// A bus of the test's own with AT-SPI on it, and a screen reader there: it reads what programs show, presses and
/// enters by their actions alone, and hears what they tell.
class ScreenReader : public QObject
{
    Q_OBJECT

public:
    /// What a program told: the signal ("PropertyChange"), what of it ("accessible-name"), whom it is about.
    struct Told
    {
        QString signal;
        QString what;
        int detail = 0;
        Address whom;
    };

    ~ScreenReader() override;

    /// Starts the bus beside a screen. Programs that start afterwards find it.
    [[nodiscard]] bool start(const QString &display);

    /// All that is on the screen, parents before their children.
    [[nodiscard]] QList<Part> everything() const;
    /// The part, as soon as it is on the screen; none when it does not come.
    [[nodiscard]] std::optional<Part> find(const QString &role, const QString &name) const;
    /// Whether it is there now.
    [[nodiscard]] bool sees(const QString &role, const QString &name) const;

    /// Asks for the action "Press" and does not wait for what comes of it.
    [[nodiscard]] bool press(const Part &part) const;
    /// The same with the part of this role and name, as soon as it is there.
    [[nodiscard]] bool press(const QString &role, const QString &name) const;
    [[nodiscard]] bool enter(const QString &role, const QString &name, const QString &text) const;
    [[nodiscard]] QString text(const Part &part) const;
    [[nodiscard]] QString nameOf(const Address &address) const;
    bool focus(const Part &part) const;

    /// What was told since the last call.
    [[nodiscard]] QList<Told> heard();

private Q_SLOTS:
    void hear(const QDBusMessage &signal);

private:
    [[nodiscard]] QDBusMessage ask(const Address &whom, const QString &interface, const QString &method,
                                   const QVariantList &arguments = {}) const;
    [[nodiscard]] QVariant property(const Address &whom, const QString &interface, const QString &name) const;
    [[nodiscard]] QList<Address> children(const Address &parent) const;
    [[nodiscard]] Part read(const Address &address, int parent) const;
    [[nodiscard]] QString labelsOf(const Address &address) const;
    void readInto(QList<Part> &parts, const Address &address, int parent) const;
    [[nodiscard]] bool listen();

    QTemporaryDir m_folder;
    QProcess m_bus;
    QList<Told> m_told;
};

} // namespace harrowby::app::test
