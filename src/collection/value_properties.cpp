// SPDX-FileCopyrightText: 2026 The database_client authors
// SPDX-License-Identifier: MIT

#include "dbc/value.h"

#include "collection/value_access.h"
#include "dbc/access.h"
#include "dbc/value_type.h"
#include "dbc/values.h"
#include "object_properties.h"
#include "property.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace dbc {
inline namespace v1 {

namespace {

using Access = ValueAccess;

std::string joined(const std::vector<LossAt>& losses)
{
    std::string text = "Value: does not fit into ObjectProperties";
    const char* separator = ": ";
    for (const LossAt& loss : losses)
    {
        text.append(separator).append(loss.path).append(" (").append(nameOf(loss.loss)).append(1, ')');
        separator = ", ";
    }
    return text;
}

/// Writes values into nodes and collects the losses.
class NodeWriter
{
public:
    explicit NodeWriter(std::vector<LossAt>& losses) : m_losses(losses) {}

    void writeFields(const Value& object, const std::shared_ptr<Property>& node)
    {
        m_open.push_back({object.fields(), object.elements(), node, std::string(), 0});
        run();
    }

    void write(const Value& value, Property& parent, const std::string& key)
    {
        m_open.push_back({{}, {}, nullptr, key, 0}); // only the key is needed, for the paths
        writeValue(value, parent);
        run();
    }

private:
    struct Level
    {
        Range<const Field> fields;
        Range<const Value> elements;
        std::shared_ptr<Property> node;
        std::string key; // of the current child
        std::size_t next;
    };

    void run()
    {
        while (!m_open.empty())
        {
            Level& level = m_open.back();
            const std::size_t index = level.next++;
            if (index < level.fields.size())
            {
                level.key = level.fields[index].key();
                writeValue(level.fields[index].value(), *level.node);
            }
            else if (index < level.elements.size())
            {
                level.key = elementKey(index, level.elements.size());
                writeValue(level.elements[index], *level.node);
            }
            else
                m_open.pop_back();
        }
    }

    void report(Loss loss)
    {
        std::string path;
        const char* separator = "";
        for (const Level& level : m_open)
        {
            path.append(separator).append(level.key);
            separator = ".";
        }
        m_losses.push_back({std::move(path), loss});
    }

    /// Writes a value to the child of @p parent with the key of the innermost level.
    void writeValue(const Value& value, Property& parent)
    {
        const std::string& key = m_open.back().key;
        if (!parent.isArray() && parent.containsSingleKey(key))
        {
            report(Loss::DuplicateKey);
            parent.removeAll(key);
        }
        if (value.isObject() || value.isArray())
        {
            auto node = value.isObject() ? parent.createSingleGroup(key) : parent.createSingleArray(key);
            m_open.push_back({value.fields(), value.elements(), std::move(node), std::string(), 0});
            return;
        }
        const auto loss = lossOf(value.type());
        const bool isKept = !loss || *loss == Loss::Symbol || *loss == Loss::Undefined;
        if (loss && *loss != Loss::Undefined)
            report(*loss);
        if (isKept)
            writeScalar(value, *parent.createSingleProperty(key));
    }

    void writeScalar(const Value& value, Property& node)
    {
        switch (value.type())
        {
        case Type::Double:
            node.setValueDouble(Access::number<double>(value));
            break;
        case Type::String:
        case Type::Symbol:
            if (Access::text(value).find('\0') != std::string_view::npos)
                report(Loss::TextWithZero);
            node.setValueString(std::string(Access::text(value)));
            break;
        case Type::Binary:
            if (Access::subtype(value) != 0)
                report(Loss::BinarySubtype);
            if (value.get<Bytes>()->empty())
                report(Loss::EmptyBinary);
            node.setValueBinary(*value.get<Bytes>());
            break;
        case Type::ObjectId:
            node.setValueId(value.get<ObjectId>()->text);
            break;
        case Type::Bool:
            node.setValueBool(*value.get<bool>());
            break;
        case Type::Time:
            node.setValueTime(Access::number<long>(value));
            break;
        case Type::RegularExpression: {
            const auto expression = *value.get<RegularExpression>();
            node.setValueRegex(expression.pattern, expression.options);
            break;
        }
        case Type::Int32:
            node.setValueInt32(Access::number<int>(value));
            break;
        case Type::Int64:
            node.setValueInt64(Access::number<long>(value));
            break;
        case Type::Undefined: // a new node has this type
        case Type::Object:
        case Type::Array:
        case Type::Null:
        case Type::DbPointer:
        case Type::Code:
        case Type::CodeWithScope:
        case Type::Timestamp:
        case Type::Decimal128:
        case Type::MaxKey:
        case Type::MinKey:
            break;
        }
    }

    std::vector<LossAt>& m_losses;
    std::vector<Level> m_open;
};

Value scalarOf(Property& node)
{
    if (node.isString())
        return Value(std::string_view(node.textView()));
    if (node.isBool())
        return Value(node.currentValueAsBool(false));
    if (node.isInt32())
        return Value(node.currentValueAsInt32(0));
    if (node.isInt64())
        return Value(node.currentValueAsInt64(0));
    if (node.isDouble())
        return Value(node.currentValueAsDouble(0));
    if (node.isTime())
        return Value(timeFromMilliseconds(node.currentValueAsTime(0)));
    if (node.isId())
        return Value(ObjectId{node.textView()});
    if (node.isBinary())
        return Value(node.bytesView());
    if (node.isRegex())
        return Value(RegularExpression{node.patternView(), node.optionsView()});
    return Value::undefined();
}

/// A node that is still to be read, and the value for it.
struct OpenNode
{
    std::shared_ptr<Property> node;
    Value* target; // an object or array with reserved memory, so that the addresses of its items do not change
};

} // namespace

LossError::LossError(std::vector<LossAt> losses) : std::invalid_argument(joined(losses)), m_losses(std::move(losses)) {}

LossError::~LossError() = default;

Value Value::fromProperties(const ObjectProperties& document)
{
    Value root;
    std::vector<OpenNode> open{{document.root(), &root}};
    const auto childOf = [](Property& node) {
        return node.isGroup() ? Value() : node.isArray() ? array() : scalarOf(node);
    };
    while (!open.empty())
    {
        const OpenNode current = std::move(open.back());
        open.pop_back();
        current.target->reserve(current.node->childCount());
        if (current.target->isArray())
        {
            for (auto& element : dbc::elements(current.node))
            {
                Value& child = current.target->push(childOf(*element));
                if (Access::isContainer(child))
                    open.push_back({std::move(element), &child});
            }
            continue;
        }
        for (const auto& [key, node] : *current.node)
        {
            Value& child = current.target->append(key, childOf(*node));
            if (Access::isContainer(child))
                open.push_back({node, &child});
        }
    }
    return root;
}

ObjectProperties Value::toProperties(std::vector<LossAt>& losses) const
{
    if (!isObject())
        throw std::logic_error("Value: not an object");
    ObjectProperties result;
    NodeWriter(losses).writeFields(*this, result.root());
    return result;
}

ObjectProperties Value::toProperties() const
{
    std::vector<LossAt> losses;
    ObjectProperties result = toProperties(losses);
    if (!losses.empty())
        throw LossError(std::move(losses));
    return result;
}

void Value::writeTo(Property& parent, const std::string& key) const
{
    std::vector<LossAt> losses;
    NodeWriter(losses).write(*this, parent, key);
    const auto isDuplicate = [](const LossAt& loss) { return loss.loss == Loss::DuplicateKey; };
    losses.erase(std::remove_if(losses.begin(), losses.end(), isDuplicate), losses.end());
    if (!losses.empty())
        throw LossError(std::move(losses));
}

std::vector<LossAt> findLosses(const Value& value)
{
    std::vector<LossAt> losses;
    if (value.isObject())
        static_cast<void>(value.toProperties(losses));
    else
    {
        const auto parent = Property::create();
        NodeWriter(losses).write(value, *parent, std::string());
    }
    return losses;
}

} // namespace v1
} // namespace dbc
