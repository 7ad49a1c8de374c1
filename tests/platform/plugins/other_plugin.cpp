// SPDX-License-Identifier: MIT
// A plugin in the same folder whose metadata names a class although its root object is no ObjectFactory.
#include <QObject>
#include <QtPlugin>

class OtherPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "harrowby.ObjectFactory/1" FILE "other_plugin.json")
};

#include "other_plugin.moc"
