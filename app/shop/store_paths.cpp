// SPDX-License-Identifier: MIT
#include "app/shop/store_paths.h"

#include "basic/store_address.h"

#include <QCryptographicHash>
#include <QFileInfo>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace harrowby::app {

namespace {

QString inDataFolder(const QString &name)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + u"/Harrowby/"_s + name;
}

} // namespace

QString defaultStorePath()
{
    return inDataFolder(u"store.sqlite"_s);
}

QString demoStorePath()
{
    return inDataFolder(u"demo.sqlite"_s);
}

QString logPath()
{
    return inDataFolder(u"harrowby.log"_s);
}

QString officeTriesPath(const QString &store)
{
    constexpr qsizetype shortened = 16;
    const QString real = isServer(store) ? storeWords(store) : QFileInfo(store).canonicalFilePath();
    const QByteArray name = QCryptographicHash::hash(real.toUtf8(), QCryptographicHash::Sha256).toHex();
    return inDataFolder(u"office-%1.tries"_s.arg(QString::fromLatin1(name.left(shortened))));
}

} // namespace harrowby::app
