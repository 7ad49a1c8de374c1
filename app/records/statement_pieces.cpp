// SPDX-License-Identifier: MIT
#include "app/records/statement_pieces.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace harrowby::app {

QString placesFor(qsizetype count)
{
    return QStringList(count, u"?"_s).join(u", "_s);
}

QString escapedForLike(QString text)
{
    for (const QChar special : {u'\\', u'%', u'_'})
        text.replace(special, QString(u'\\') + special);
    return text;
}

} // namespace harrowby::app
