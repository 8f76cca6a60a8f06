#pragma once

#include <QString>
#include <QStringList>

// Which keys a configuration may have, where, and of which type. Keys of plug-ins that are not
// listed are known once somebody reads them.
namespace ConfigSchema {

enum class Kind
{
    Text,
    Bool,
    Integer,
    Number,  // an integer is one, too
    Group    // a table, or an array of tables
};

struct Key
{
    const char* scope;  // see ScopeOf
    const char* name;
    Kind kind;
    double minimum;  // of integers and numbers; limits hold where minimum < maximum
    double maximum;
};

// Scopes: "" the root; "AdditionalDlls" (any entry is known there); "Entry" an entry of it;
// "Config:NAME" the Config table of a plug-in; "Config:NAME/GROUP" the elements of a group in it.
// Null when the key is not known there.
const Key* Find(const QString& scope, const QString& name);

// The names known in a scope.
QStringList Names(const QString& scope);

// The one of `names` that `name` was probably meant to be; empty when none is near.
QString Nearest(const QString& name, const QStringList& names);

// "a text", "true or false", ...
QString Describe(Kind kind);

}  // namespace ConfigSchema
