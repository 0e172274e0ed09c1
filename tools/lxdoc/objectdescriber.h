// SPDX-License-Identifier: MIT
#ifndef LXDOC_TOOL_OBJECTDESCRIBER_H
#define LXDOC_TOOL_OBJECTDESCRIBER_H

#include <QJsonObject>

class ILXCmd;
class ILXObject;

// Reads page objects and recorded commands through their interfaces into
// JSON, children included. An object's text is handed out by the library
// (it leaves the page's copy), so only lessons opened as private copies are
// described.
class ObjectDescriber {
public:
    static QJsonObject object(ILXObject *object);
    static QJsonObject command(ILXCmd *command);

private:
    static void addStyle(QJsonObject &node, ILXObject *object);
    static void addPlainAttributes(QJsonObject &node, ILXObject *object);
    static void addGeometry(QJsonObject &node, ILXObject *object);
    static void addText(QJsonObject &node, ILXObject *object);
    static void addChildren(QJsonObject &node, ILXObject *object);
    static void addCommandLists(QJsonObject &node, ILXCmd *command);
    static void addSteps(QJsonObject &node, ILXCmd *command);
};

#endif
