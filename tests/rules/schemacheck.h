#pragma once

#include <QJsonObject>
#include <QJsonValue>
#include <QString>

/*!
 * As much of JSON Schema as docs/rules.schema.json uses: $ref into $defs, type, const, enum,
 * required, properties, additionalProperties false, items, minItems, maxItems, minimum, maximum,
 * minLength and maxLength. A keyword that isn't known fails.
 */
class SchemaCheck
{
public:
    explicit SchemaCheck(const QJsonObject &schema) : m_schema(schema) { }

    /*! What is wrong with \a value and where, or an empty text. */
    QString check(const QJsonValue &value) const
    {
        return check(m_schema, value, QStringLiteral("$"));
    }

private:
    QString check(const QJsonObject &schema, const QJsonValue &value, const QString &place) const;
    QString checkKeyword(const QString &keyword, const QJsonValue &wanted,
                         const QJsonObject &schema, const QJsonValue &value,
                         const QString &place) const;
    QString checkObject(const QJsonObject &schema, const QJsonObject &object,
                        const QString &place) const;

    QJsonObject m_schema;
};
