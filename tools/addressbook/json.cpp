#include "tools/addressbook/json.h"

#include "tools/addressbook/fields.h"

namespace addressbook::tool {

Json jsonOf(const Value& value) {
    if (const auto* text = value.as<std::string>()) {
        return *text;
    }
    if (const auto* number = value.as<std::int64_t>()) {
        return *number;
    }
    if (const auto* real = value.as<double>()) {
        return *real;
    }
    if (const auto* array = value.as<Array>()) {
        Json list = Json::array();
        for (const Value& each : *array) {
            list.push_back(jsonOf(each));
        }
        return list;
    }
    if (const auto* fields = value.as<Dictionary>()) {
        Json object = Json::object();
        for (const auto& [key, each] : *fields) {
            object[key] = jsonOf(each);
        }
        return object;
    }
    if (const auto* list = value.as<MultiValue>()) {
        Json entries = Json::array();
        for (const Entry& entry : list->entries) {
            Json object{{"label", labelText(entry.label)}, {"value", jsonOf(entry.value)}};
            if (!list->primary.empty() && entry.identifier == list->primary) {
                object["primary"] = true;
            }
            entries.push_back(std::move(object));
        }
        return entries;
    }
    if (value.empty()) {
        return nullptr;
    }
    return valueText(value);
}

std::string dump(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

} // namespace addressbook::tool
