// SPDX-License-Identifier: MIT
#pragma once

#include "tests/app/fussy_records.h"
#include "tests/app/shop_place.h"
#include "tests/app/store_files.h"

#include <QLabel>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>

#include <functional>
#include <memory>

class QDialog;

namespace harrowby::app::test {

/// The office's page of codes over a store with TEA and MILK, two codes of TEA and one of an item that is gone, anew
/// for each test function.
class CodesDesk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

protected:
    template <class Widget>
    [[nodiscard]] static Widget *in(QWidget &parent, const char *name)
    {
        return parent.findChild<Widget *>(QString::fromLatin1(name));
    }
    void press(const char *name) { QTest::mouseClick(in<QPushButton>(*m_window, name), Qt::LeftButton); }
    void choose(const QString &code);
    void inNextDialog(const std::function<void(QDialog &)> &act);
    void answerNextBox(QMessageBox::ButtonRole role);
    [[nodiscard]] QStringList listed() const;
    [[nodiscard]] QString outcome() const { return in<QLabel>(*m_window, "codesOutcome")->text(); }
    [[nodiscard]] QString read(const QString &select) const { return m_shop->read(select); }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ShopPlace> m_place;
    std::unique_ptr<OpenShop> m_shop;
    std::unique_ptr<FussyRecords> m_fussy; ///< of a file
    Records *m_records = nullptr;
    std::unique_ptr<QWidget> m_window;
    QString m_boxText;
};

} // namespace harrowby::app::test
