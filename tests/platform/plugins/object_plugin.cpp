// SPDX-License-Identifier: MIT
// A plugin as a third party writes it: one class that works and two that do not.
#include <harrowby/objects.h>

#include <stdexcept>

class ObjectPlugin : public QObject, public harrowby::ObjectFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HARROWBY_OBJECT_FACTORY_IID FILE "object_plugin.json")
    Q_INTERFACES(harrowby::ObjectFactory)

public:
    QObject *create(const QString &classId) override
    {
        if (classId.compare(QLatin1String("Test.Throws"), Qt::CaseInsensitive) == 0)
            throw std::runtime_error("no ink");
        if (classId.compare(QLatin1String("Test.Nothing"), Qt::CaseInsensitive) == 0)
            return nullptr;
        auto *made = new QObject;
        made->setObjectName(QLatin1String("from the plugin"));
        return made;
    }
};

#include "object_plugin.moc"
