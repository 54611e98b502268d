#pragma once

#include <QMetaMethod>
#include <QStringList>

/// The signatures of the methods that a class itself declares, in order.
inline QStringList ownMethods(const QMetaObject& metaObject)
{
    QStringList signatures;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i)
        signatures.append(QString::fromLatin1(metaObject.method(i).methodSignature()));
    return signatures;
}
