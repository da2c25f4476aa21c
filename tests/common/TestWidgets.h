#pragma once

#include <QAbstractButton>
#include <QObject>
#include <QString>
#include <QTest>

// Finding the widgets of a form by their objectName and pressing them, as the GUI tests do.
namespace TestWidgets {

// The descendant of root of type T named name. A name the form doesn't have is a mistake of the
// test, not a result: the program stops with the name.
template <typename T> T *child(const QObject &root, const QString &name)
{
    T *found = root.findChild<T *>(name);
    if (!found)
        qFatal("no %s named %s under %s", T::staticMetaObject.className(), qPrintable(name),
               qPrintable(root.objectName()));
    return found;
}

template <typename T> T *child(const QObject *root, const QString &name)
{
    return child<T>(*root, name);
}

// A left click with the mouse on the button named name.
inline void click(const QObject &root, const QString &name)
{
    QTest::mouseClick(child<QAbstractButton>(root, name), Qt::LeftButton);
}

inline void click(const QObject *root, const QString &name)
{
    click(*root, name);
}

} // namespace TestWidgets
