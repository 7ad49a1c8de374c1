// SPDX-License-Identifier: MIT
#pragma once

#include "app/codes/in_store_rule.h"
#include "app/records/deeds.h"
#include "app/records/shop_settings.h"

#include <QDialog>
#include <QMap>
#include <QString>

#include <optional>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;

namespace harrowby::app {

/// The rules for codes of the shop's own that hold a price or a weight, one a prefix. Nothing is read from such codes
/// until a rule is switched on here.
class InStoreDialog final : public QDialog
{
    Q_OBJECT

public:
    /// The records must outlive it.
    explicit InStoreDialog(const SignedDeeds &deeds, QWidget *parent = nullptr);

private:
    void createParts();
    QFormLayout *makeForm();
    void layOut();
    void readRules();
    void nameEntries();
    [[nodiscard]] QString prefix() const;
    void showRule();
    void tryCode();
    void save();
    [[nodiscard]] std::optional<QString> saved() const;
    [[nodiscard]] Result<InStoreRule, QString> entered() const;

    SignedDeeds m_deeds;
    ShopSettings m_settings;
    QMap<QString, QString> m_saved; ///< rules that are switched on, by prefix
    QComboBox *m_prefix = nullptr;
    QCheckBox *m_isOn = nullptr;
    QLineEdit *m_pattern = nullptr;
    QComboBox *m_decimals = nullptr;
    QLineEdit *m_sample = nullptr;
    QLabel *m_reading = nullptr;
    QPushButton *m_save = nullptr;
    QLabel *m_outcome = nullptr;
};

} // namespace harrowby::app
