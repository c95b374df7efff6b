// Functions about the design of a file. The host's file is a folder of scripts, which has nothing but
// scripts.
#include "host/calc/functions/groups.h"
#include "host/calc/session.h"
#include "host/values/text.h"

namespace host {

namespace {

// Returns the folder's name: it is the only open file.
Value databaseNames(Session& session, Arguments /*in*/) {
    const std::u16string& folder = session.environment().folder;
    return Value::text(folder.substr(folder.rfind(u'/') + 1));
}

// Returns the scripts of the file with the given name, which must be the folder; an empty name means it, too.
Value scriptNames(Session& session, Arguments in) {
    const std::u16string file = in[0].asText();
    const Environment& environment = session.environment();
    const bool isFolder = file.empty() || foldCase(file) == foldCase(databaseNames(session, {}).asText());
    if (!isFolder || !environment.scriptNames) {
        return {};
    }
    std::u16string result;
    for (const std::u16string& name : environment.scriptNames()) {
        result += (result.empty() ? u"" : u"\r") + name;
    }
    return Value::text(result);
}

constexpr Builtin kFunctions[] = {
    {u"DatabaseNames", databaseNames, "Returns the names of the open files."},
    {u"ScriptNames ( fileName )", scriptNames, "Returns the names of the file's scripts."},
    {u"BaseTableComment ( fileName ; baseTableName )", Placeholder{u""}, "Returns the comment of a table."},
    {u"BaseTableIDs ( fileName )", Placeholder{u""}, "Returns the ids of the file's tables."},
    {u"BaseTableNames ( fileName )", Placeholder{u""}, "Returns the names of the file's tables."},
    {u"FieldAnnotation ( fileName ; fieldName )", Placeholder{u""}, "Returns the annotation of a field."},
    {u"FieldBounds ( fileName ; layoutName ; fieldName )", Placeholder{u""},
     "Returns where a field stands on a layout."},
    {u"FieldComment ( fileName ; fieldName )", Placeholder{u""}, "Returns the comment of a field."},
    {u"FieldDisplayNames ( fileName ; fieldName )", Placeholder{u""},
     "Returns the names that a field is shown with."},
    {u"FieldIDs ( fileName ; layoutName )", Placeholder{u""}, "Returns the ids of the fields on a layout."},
    {u"FieldNames ( fileName ; layoutName )", Placeholder{u""},
     "Returns the names of the fields on a layout."},
    {u"FieldRepetitions ( fileName ; layoutName ; fieldName )", Placeholder{u""},
     "Returns how many repetitions of a field a layout shows."},
    {u"FieldStyle ( fileName ; layoutName ; fieldName )", Placeholder{u""},
     "Returns how a field is shown on a layout."},
    {u"FieldType ( fileName ; fieldName )", Placeholder{u""}, "Returns the type of a field."},
    {u"GetNextSerialValue ( fileName ; fieldName )", Placeholder{u""},
     "Returns the next serial number of a field."},
    {u"LayoutIDs ( fileName )", Placeholder{u""}, "Returns the ids of the file's layouts."},
    {u"LayoutNames ( fileName )", Placeholder{u""}, "Returns the names of the file's layouts."},
    {u"LayoutObjectNames ( fileName ; layoutName )", Placeholder{u""},
     "Returns the names of the objects on a layout."},
    {u"RelationInfo ( fileName ; tableName )", Placeholder{u""}, "Returns the relationships of a table."},
    {u"ScriptIDs ( fileName )", Placeholder{u""}, "Returns the ids of the file's scripts."},
    {u"TableIDs ( fileName )", Placeholder{u""}, "Returns the ids of the table occurrences."},
    {u"TableNames ( fileName )", Placeholder{u""}, "Returns the names of the table occurrences."},
    {u"ValueListIDs ( fileName )", Placeholder{u""}, "Returns the ids of the file's value lists."},
    {u"ValueListItems ( fileName ; valueList )", Placeholder{u""}, "Returns the values of a value list."},
    {u"ValueListNames ( fileName )", Placeholder{u""}, "Returns the names of the file's value lists."},
    {u"WindowNames {( fileName )}", Placeholder{u""}, "Returns the names of the open windows."},
};

} // namespace

std::span<const Builtin> designFunctions() {
    return kFunctions;
}

} // namespace host
