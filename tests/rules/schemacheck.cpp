#include "schemacheck.h"

#include <QJsonArray>
#include <QStringList>

namespace {

bool isOfType(const QString &type, const QJsonValue &value)
{
    if (type == QLatin1String("object"))
        return value.isObject();
    if (type == QLatin1String("array"))
        return value.isArray();
    if (type == QLatin1String("string"))
        return value.isString();
    if (type == QLatin1String("boolean"))
        return value.isBool();
    if (type == QLatin1String("null"))
        return value.isNull();
    if (type == QLatin1String("integer"))
        return value.isDouble() && value.toDouble() == double(qint64(value.toDouble()));
    return false;
}

bool isOfOneType(const QJsonValue &wanted, const QJsonValue &value)
{
    if (wanted.isString())
        return isOfType(wanted.toString(), value);
    const QJsonArray types = wanted.toArray();
    for (const QJsonValue &type : types) {
        if (isOfType(type.toString(), value))
            return true;
    }
    return false;
}

} // namespace

QString SchemaCheck::check(const QJsonObject &schema, const QJsonValue &value,
                           const QString &place) const
{
    for (auto it = schema.begin(); it != schema.end(); ++it) {
        QString error = checkKeyword(it.key(), it.value(), schema, value, place);
        if (!error.isEmpty())
            return error;
    }
    return QString();
}

QString SchemaCheck::checkKeyword(const QString &keyword, const QJsonValue &wanted,
                                  const QJsonObject &schema, const QJsonValue &value,
                                  const QString &place) const
{
    static const QStringList silent = {QStringLiteral("$schema"),     QStringLiteral("$id"),
                                       QStringLiteral("$defs"),       QStringLiteral("title"),
                                       QStringLiteral("description"), QStringLiteral("properties"),
                                       QStringLiteral("required")};
    const auto failIf = [&](bool isWrong) {
        return isWrong ? QStringLiteral("%1: %2").arg(place, keyword) : QString();
    };
    if (keyword == QLatin1String("$ref")) {
        const QString name = wanted.toString().section(QLatin1Char('/'), -1);
        const QJsonValue target = m_schema.value(QStringLiteral("$defs")).toObject().value(name);
        return target.isObject() ? check(target.toObject(), value, place) : failIf(true);
    }
    if (keyword == QLatin1String("type"))
        return isOfOneType(wanted, value)
            ? (value.isObject() ? checkObject(schema, value.toObject(), place) : QString())
            : failIf(true);
    if (keyword == QLatin1String("const"))
        return failIf(value != wanted);
    if (keyword == QLatin1String("enum"))
        return failIf(!wanted.toArray().contains(value));
    if (keyword == QLatin1String("minimum"))
        return failIf(value.isDouble() && value.toDouble() < wanted.toDouble());
    if (keyword == QLatin1String("maximum"))
        return failIf(value.isDouble() && value.toDouble() > wanted.toDouble());
    if (keyword == QLatin1String("minItems"))
        return failIf(value.toArray().size() < wanted.toInt());
    if (keyword == QLatin1String("maxItems"))
        return failIf(value.toArray().size() > wanted.toInt());
    if (keyword == QLatin1String("minLength"))
        return failIf(value.isString() && value.toString().size() < wanted.toInt());
    if (keyword == QLatin1String("maxLength"))
        return failIf(value.isString() && value.toString().size() > wanted.toInt());
    if (keyword == QLatin1String("items")) {
        const QJsonArray items = value.toArray();
        for (int i = 0; i < items.size(); ++i) {
            const QString error =
                check(wanted.toObject(), items.at(i), QStringLiteral("%1[%2]").arg(place).arg(i));
            if (!error.isEmpty())
                return error;
        }
        return QString();
    }
    if (keyword == QLatin1String("additionalProperties"))
        return failIf(wanted.toBool(true)); // only "false" is known
    return failIf(!silent.contains(keyword));
}

QString SchemaCheck::checkObject(const QJsonObject &schema, const QJsonObject &object,
                                 const QString &place) const
{
    const QJsonObject properties = schema.value(QStringLiteral("properties")).toObject();
    const QJsonArray required = schema.value(QStringLiteral("required")).toArray();
    for (const QJsonValue &name : required) {
        if (!object.contains(name.toString()))
            return QStringLiteral("%1: no %2").arg(place, name.toString());
    }
    for (auto it = object.begin(); it != object.end(); ++it) {
        const QString inner = QStringLiteral("%1.%2").arg(place, it.key());
        if (!properties.contains(it.key())) {
            if (schema.contains(QStringLiteral("additionalProperties")))
                return inner + QLatin1String(": not in the schema");
            continue;
        }
        QString error = check(properties.value(it.key()).toObject(), it.value(), inner);
        if (!error.isEmpty())
            return error;
    }
    return QString();
}
