// SPDX-License-Identifier: MIT
#include "plugins/report/report_component.h"

#include <harrowby/objects.h>
#include <harrowby/report_component.h>

namespace harrowby::report {

class ReportPlugin : public QObject, public ObjectFactory
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID HARROWBY_OBJECT_FACTORY_IID FILE "report_plugin.json")
    Q_INTERFACES(harrowby::ObjectFactory)

public:
    QObject *create(const QString &classId) override
    {
        const bool known = classId.compare(ReportClassId, Qt::CaseInsensitive) == 0;
        return known ? std::make_unique<ReportComponent>().release() : nullptr;
    }
};

} // namespace harrowby::report

#include "report_plugin.moc"
