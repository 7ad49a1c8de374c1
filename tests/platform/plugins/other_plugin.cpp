// SPDX-License-Identifier: MIT
// Lies in the same folder, and promises something that its root object cannot do.
#include <QObject>
#include <QtPlugin>

class OtherPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "harrowby.ObjectFactory/1" FILE "other_plugin.json")
};

#include "other_plugin.moc"
