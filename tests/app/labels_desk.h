// SPDX-License-Identifier: MIT
#pragma once

#include "app/labels/labels_page.h"
#include "tests/app/false_print_service.h"
#include "tests/app/shop_place.h"

#include <QHash>
#include <QLabel>
#include <QMessageBox>
#include <QObject>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <memory>

class QDialog;

namespace harrowby::app::test {

/// The office's page of labels over a store with a few items, anew for each test function.
class LabelsDesk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

protected:
    template <class Widget>
    [[nodiscard]] static Widget *in(QWidget &parent, const char *name)
    {
        return parent.findChild<Widget *>(QString::fromLatin1(name));
    }
    template <class Widget>
    [[nodiscard]] Widget *part(const char *name)
    {
        return in<Widget>(*m_page, name);
    }
    void press(const char *name) { QTest::mouseClick(part<QPushButton>(name), Qt::LeftButton); }
    void inNextDialog(const std::function<void(QDialog &)> &act);
    /// Answers the box that opens some time later.
    void answerBox(QMessageBox::ButtonRole role);
    /// Opens the window that adds items, and finds them.
    void pick(const QString &text, const std::function<void(QDialog &)> &act);
    void add(const QString &text);
    [[nodiscard]] QStringList listed();
    [[nodiscard]] QString outcome() { return part<QLabel>("labelsOutcome")->text(); }
    void chooseRow(const QString &item);
    [[nodiscard]] QString savePdf();

    FalsePrintService m_service;
    QTemporaryDir m_madeFolder;
    QString m_made; ///< a store file to copy
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<ShopPlace> m_place;
    QString m_store;
    std::unique_ptr<OpenShop> m_shop;
    Records *m_records = nullptr;
    QHash<QString, QString> m_saved;
    QString m_path; ///< that is chosen to save at
    QString m_boxText;
    std::unique_ptr<LabelsPage> m_page;
};

} // namespace harrowby::app::test
