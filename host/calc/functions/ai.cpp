// Artificial intelligence: computing with vectors of numbers. Functions that ask a model are placeholders, as
// this host has no network.
#include "host/calc/functions/data.h"
#include "host/calc/functions/groups.h"
#include "host/calc/json_text.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

namespace host {

namespace {

using Vector = std::vector<double>;

// Returns a value as a vector: a JSON array of numbers, or a file of little-endian 32-bit floating-point
// numbers.
std::optional<Vector> vectorOf(const Value& value) {
    Vector result;
    if (value.type() == ValueType::container) {
        const DataBytes data(value);
        if (data.bytes().size() % sizeof(float) != 0) {
            return std::nullopt;
        }
        for (size_t at = 0; at < data.bytes().size(); at += sizeof(float)) {
            float number = 0;
            std::memcpy(&number, data.bytes().data() + at, sizeof number);
            result.push_back(number);
        }
        return result;
    }
    const auto parsed = parsedJson(value);
    if (!parsed->root.is_array()) {
        return std::nullopt;
    }
    for (const Json& element : parsed->root) {
        if (!element.is_number()) {
            return std::nullopt;
        }
        result.push_back(element.get<double>());
    }
    return result;
}

Value binaryFile(const Vector& vector, std::u16string_view name) {
    static_assert(std::endian::native == std::endian::little);
    Bytes bytes(vector.size() * sizeof(float));
    for (size_t i = 0; i < vector.size(); ++i) {
        const auto number = static_cast<float>(vector[i]);
        std::memcpy(bytes.data() + i * sizeof number, &number, sizeof number);
    }
    return name.empty() ? namelessFile(std::move(bytes)) : decodedValue(std::move(bytes), name);
}

// Returns a vector in the form of [like]: as a file when that is a container, else as JSON.
Value vectorValue(const Vector& vector, const Value& like) {
    return like.type() == ValueType::container ? binaryFile(vector, u"") : jsonValue(Json(vector), false);
}

double product(const Vector& left, const Vector& right) {
    return std::inner_product(left.begin(), left.end(), right.begin(), 0.0);
}

// Returns the vector scaled to length 1; nothing for one of length 0.
std::optional<Vector> normalized(Vector vector) {
    const double length = std::sqrt(product(vector, vector));
    if (length == 0 || !std::isfinite(length)) {
        return std::nullopt;
    }
    for (double& number : vector) {
        number /= length;
    }
    return vector;
}

Value combined(Arguments in, double sign) {
    auto left = vectorOf(in[0]);
    const auto right = vectorOf(in[1]);
    if (!left || !right || left->size() != right->size()) {
        return Value::invalid();
    }
    for (size_t i = 0; i < left->size(); ++i) {
        (*left)[i] += sign * (*right)[i];
    }
    const auto result = normalized(std::move(*left));
    return result ? vectorValue(*result, in[0]) : Value::invalid();
}

Value addEmbeddings(Session& /*session*/, Arguments in) {
    return combined(in, 1);
}
Value subtractEmbeddings(Session& /*session*/, Arguments in) {
    return combined(in, -1);
}

Value cosineSimilarity(Session& /*session*/, Arguments in) {
    const auto left = vectorOf(in[0]);
    const auto right = vectorOf(in[1]);
    if (!left || !right || left->size() != right->size()) {
        return Value::invalid();
    }
    const double lengths =
        std::sqrt(product(*left, *left) * product(*right, *right)); // 1 for [1,2] and [2,4]
    return lengths == 0 ? Value::invalid()
                        : Value::number(Number::fromDouble(product(*left, *right) / lengths));
}

// Keeps only the given number of dimensions, if there is one.
Value normalizeEmbedding(Session& /*session*/, Arguments in) {
    auto vector = vectorOf(in[0]);
    if (!vector) {
        return Value::invalid();
    }
    if (in.size() > 1 && !in[1].isEmpty()) {
        const size_t wanted = count(in[1]);
        if (wanted == 0 || wanted > vector->size()) {
            return Value::invalid();
        }
        vector->resize(wanted);
    }
    const auto result = normalized(std::move(*vector));
    return result ? vectorValue(*result, in[0]) : Value::invalid();
}

Value embeddingAsFile(Session& /*session*/, Arguments in) {
    const auto vector = vectorOf(in[0]);
    return vector ? binaryFile(*vector, in.size() > 1 ? in[1].asText() : std::u16string()) : Value::invalid();
}

Value embeddingAsText(Session& /*session*/, Arguments in) {
    const auto vector = vectorOf(in[0]);
    return vector ? jsonValue(Json(*vector), false) : Value::invalid();
}

// Estimates the number of tokens: one for every four characters.
Value tokenCount(Session& /*session*/, Arguments in) {
    constexpr size_t kCharactersOfToken = 4;
    const size_t size = in[0].asText().size();
    return integerValue(static_cast<int64_t>((size + kCharactersOfToken - 1) / kCharactersOfToken));
}

Value tableDdl(Session& /*session*/, Arguments in) {
    return in[1].asBoolean() ? Value() : Value::invalid();
}

constexpr Builtin kFunctions[] = {
    {u"AddEmbeddings ( v1 ; v2 )", addEmbeddings, "Adds two vectors and makes the sum's length 1."},
    {u"ComputeModel ( modelName ; parameterName1 ; value1 {; ...} )", Placeholder{u"?"},
     "Asks a model on the device."},
    {u"CosineSimilarity ( v1 ; v2 )", cosineSimilarity, "Tells how alike two vectors are, -1 to 1."},
    {u"GetEmbedding ( account ; model ; input )", Placeholder{{u"?"}, CalcCode::aiAccountMissing},
     "Asks a model for the vector of a text or picture."},
    {u"GetEmbeddingAsFile ( text {; fileNameWithExtension } )", embeddingAsFile,
     "Writes a vector as a file of binary numbers."},
    {u"GetEmbeddingAsText ( data )", embeddingAsText, "Writes a vector as a JSON array."},
    {u"GetFieldsOnLayout ( layoutName )", Placeholder{u"?"}, "Describes the fields of a layout for a model."},
    {u"GetModelAttributes ( modelName )", Placeholder{u"?"}, "Describes a model on the device."},
    {u"GetRAGSpaceInfo ( ragAccountName {; spaceID } )", Placeholder{u"?"},
     "Describes a store of documents for a model."},
    {u"GetTableDDL ( tableOccurrenceNames ; ignoreError )", tableDdl, "Describes tables for a model."},
    {u"GetTokenCount ( text )", tokenCount, "Estimates how many tokens a model makes of a text."},
    {u"NormalizeEmbedding ( data {; dimension } )", normalizeEmbedding, "Makes a vector's length 1."},
    {u"PredictFromModel ( modelName ; v1 )", Placeholder{u"?"}, "Predicts a number with a model."},
    {u"SubtractEmbeddings ( v1 ; v2 )", subtractEmbeddings,
     "Subtracts two vectors and makes the difference's length 1."},
};

} // namespace

std::span<const Builtin> aiFunctions() {
    return kFunctions;
}

} // namespace host
