// SPDX-License-Identifier: MIT
#pragma once

#include "app/catalogue/import_file.h"
#include "basic/result.h"

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QUrl>

#include <optional>

namespace harrowby::app {

/// What a file is that is no list in plain text, and what to do about it, in words for a person; nothing where it may
/// be a list. Told by its first bytes, as people rename files.
[[nodiscard]] std::optional<QString> whyNoList(QByteArrayView bytes);

/// A file that may be a list, read, or why it will not do, in words for a person.
[[nodiscard]] Result<ImportFile, QString> readList(const QString &path);

/// What is dropped onto the page: one file of this computer, or why it will not do.
[[nodiscard]] Result<QString, QString> oneFileOf(const QList<QUrl> &urls);

} // namespace harrowby::app
