#include "app/menuresource.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

MENUITEM ReadItem(const QJsonObject& o)
{
    MENUITEM item;
    if (o.contains("popup"))
    {
        item.Label = o["popup"].toString();
        for (const QJsonValue& v : o["items"].toArray())
            item.Items.push_back(ReadItem(v.toObject()));
        return item;
    }
    item.Separator = o["separator"].toBool();
    item.Label = o["label"].toString();
    item.Accel = o["accel"].toString();
    item.Id = o["id"].toInt();
    item.Grayed = o["grayed"].toBool();
    item.Checkable = o["checkable"].toBool();
    return item;
}

} // namespace

// The resources live in a static library, which the linker would drop
// without this reference.
static void InitResources()
{
    Q_INIT_RESOURCE(resources);
}

MENURESOURCE LoadMenuResource(const QString& file)
{
    InitResources();
    MENURESOURCE r;
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return r;
    const QJsonObject root = QJsonDocument::fromJson(f.readAll()).object();
    for (const QJsonValue& v : root["menu"].toArray())
        r.Popups.push_back(ReadItem(v.toObject()));
    for (const QJsonValue& v : root["accelerators"].toArray())
        r.Accelerators.push_back({v.toObject()["key"].toString(), v.toObject()["id"].toInt()});
    for (const QJsonValue& v : root["extraAccelerators"].toArray())
        r.ExtraAccelerators.push_back({v.toObject()["key"].toString(), v.toObject()["id"].toInt()});
    return r;
}
