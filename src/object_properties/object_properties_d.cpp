#include "object_properties_d.h"

#include "property/property_paths.h"

namespace {

// A key without segments: empty, or nothing but "/".
bool isRootKey(const std::string& key) noexcept
{
    return key.find_first_not_of('/') == std::string::npos;
}

// Puts the cursor back where it stood, on every way out.
class CursorReturn
{
public:
    explicit CursorReturn(std::shared_ptr<Property>& cursor) : m_cursor(cursor), m_node(cursor) {}
    CursorReturn(const CursorReturn&) = delete;
    CursorReturn& operator=(const CursorReturn&) = delete;
    ~CursorReturn() { m_cursor = std::move(m_node); }

private:
    std::shared_ptr<Property>& m_cursor;
    std::shared_ptr<Property> m_node;
};

} // namespace

ObjectPropertiesPrivate::ObjectPropertiesPrivate() : root(Property::create()), current(root)
{
    PropertyTree::becomeGroup(*root);
}

Property& ObjectPropertiesPrivate::rootGroup(const std::string& key) const
{
    return key.empty() || key[0] == '/' ? *root : *current;
}

void ObjectPropertiesPrivate::beginGroup(const std::string& key)
{
    std::as_const(*this).beginGroup(key);
}

void ObjectPropertiesPrivate::beginGroup(const std::string& key) const
{
    current = isRootKey(key) ? root : property_paths::obtain(rootGroup(key), key, Group, Group)->getPtr();
}

// The root has no parent, and a node that was cut off may have lost it: the cursor stays there.
void ObjectPropertiesPrivate::endGroup() const
{
    if (auto parent = PropertyTree::parentOf(*current))
        current = std::move(parent);
}

// beginArray() on a group goes to the root, beginGroup() on an array adds an element: callers depend on the difference.
void ObjectPropertiesPrivate::beginArray(const std::string& key) const
{
    if (isRootKey(key))
    {
        current = root;
        return;
    }
    Property* node = property_paths::obtain(rootGroup(key), key, Array, Group);
    if (node->isGroup())
        current = root;
    else if (node->isArray())
        current = node->getPtr();
}

void ObjectPropertiesPrivate::endArray() const
{
    endGroup();
}

bool ObjectPropertiesPrivate::beginObject(const int& index) const
{
    auto child = current->childByIndex(index);
    if (!child)
        return false;
    current = std::move(child);
    return true;
}

void ObjectPropertiesPrivate::endObject() const
{
    endGroup();
}

std::string ObjectPropertiesPrivate::group() const
{
    return current->key();
}

std::string ObjectPropertiesPrivate::key() const
{
    return group();
}

int ObjectPropertiesPrivate::type() const
{
    return current->type();
}

int ObjectPropertiesPrivate::type(const std::string& key) const
{
    return rootGroup(key).type(key);
}

std::size_t ObjectPropertiesPrivate::childCount() const
{
    return current->childCount();
}

std::list<std::string> ObjectPropertiesPrivate::childKeys() const
{
    return current->childKeys();
}

std::list<std::string> ObjectPropertiesPrivate::childGroups() const
{
    return current->childGroups();
}

std::list<std::string> ObjectPropertiesPrivate::childArrays() const
{
    return current->childArrays();
}

bool ObjectPropertiesPrivate::isEmpty() const
{
    return root->childCount() == 0;
}

bool ObjectPropertiesPrivate::contains(const std::string& key) const
{
    return rootGroup(key).contains(key);
}

void ObjectPropertiesPrivate::remove(const std::string& key)
{
    rootGroup(key).remove(key);
}

void ObjectPropertiesPrivate::remove(const int& index)
{
    current->remove(index);
}

void ObjectPropertiesPrivate::setCurrentValueString(const std::string& value)
{
    current->setValueString(value);
}

void ObjectPropertiesPrivate::setCurrentValueBool(const bool& value)
{
    current->setValueBool(value);
}

void ObjectPropertiesPrivate::setCurrentValueInt32(const int& value)
{
    current->setValueInt32(value);
}

void ObjectPropertiesPrivate::setCurrentValueInt64(const long& value)
{
    current->setValueInt64(value);
}

void ObjectPropertiesPrivate::setCurrentValueDouble(const double& value)
{
    current->setValueDouble(value);
}

void ObjectPropertiesPrivate::setCurrentValueTime(const long& value)
{
    current->setValueTime(value);
}

void ObjectPropertiesPrivate::setCurrentValueId(const std::string& value)
{
    current->setValueId(value);
}

void ObjectPropertiesPrivate::setCurrentValueBinary(const std::vector<unsigned char>& value)
{
    current->setValueBinary(value);
}

void ObjectPropertiesPrivate::setCurrentValueRegex(const std::string& pattern, const std::string& options)
{
    current->setValueRegex(pattern, options);
}

std::string ObjectPropertiesPrivate::currentValueAsString(const std::string& def) const
{
    return current->currentValueAsString(def);
}

bool ObjectPropertiesPrivate::currentValueAsBool(const bool& def) const
{
    return current->currentValueAsBool(def);
}

int ObjectPropertiesPrivate::currentValueAsInt32(const int& def) const
{
    return current->currentValueAsInt32(def);
}

long ObjectPropertiesPrivate::currentValueAsInt64(const long& def) const
{
    return current->currentValueAsInt64(def);
}

double ObjectPropertiesPrivate::currentValueAsDouble(const double& def) const
{
    return current->currentValueAsDouble(def);
}

long ObjectPropertiesPrivate::currentValueAsTime(const long& def) const
{
    return current->currentValueAsTime(def);
}

std::string ObjectPropertiesPrivate::currentValueAsId(const std::string& def) const
{
    return current->currentValueAsId(def);
}

std::vector<unsigned char> ObjectPropertiesPrivate::currentValueAsBinary(const std::vector<unsigned char>& def) const
{
    return current->currentValueAsBinary(def);
}

std::pair<std::string, std::string> ObjectPropertiesPrivate::currentValueAsRegex(const std::string& pattern,
                                                                                 const std::string& options) const
{
    return current->currentValueAsRegex(pattern, options);
}

void ObjectPropertiesPrivate::setValueString(const std::string& key, const std::string& value)
{
    rootGroup(key).setValueString(key, value);
}

void ObjectPropertiesPrivate::setValueBool(const std::string& key, const bool& value)
{
    rootGroup(key).setValueBool(key, value);
}

void ObjectPropertiesPrivate::setValueInt32(const std::string& key, const int& value)
{
    rootGroup(key).setValueInt32(key, value);
}

void ObjectPropertiesPrivate::setValueInt64(const std::string& key, const long& value)
{
    rootGroup(key).setValueInt64(key, value);
}

void ObjectPropertiesPrivate::setValueDouble(const std::string& key, const double& value)
{
    rootGroup(key).setValueDouble(key, value);
}

void ObjectPropertiesPrivate::setValueTime(const std::string& key, const long& value)
{
    rootGroup(key).setValueTime(key, value);
}

void ObjectPropertiesPrivate::setValueId(const std::string& key, const std::string& value)
{
    rootGroup(key).setValueId(key, value);
}

void ObjectPropertiesPrivate::setValueBinary(const std::string& key, const std::vector<unsigned char>& value)
{
    rootGroup(key).setValueBinary(key, value);
}

void ObjectPropertiesPrivate::setValueRegex(const std::string& key, const std::string& pattern,
                                            const std::string& options)
{
    rootGroup(key).setValueRegex(key, pattern, options);
}

std::string ObjectPropertiesPrivate::valueAsString(const std::string& key, const std::string& def) const
{
    return rootGroup(key).valueAsString(key, def);
}

bool ObjectPropertiesPrivate::valueAsBool(const std::string& key, const bool& def) const
{
    return rootGroup(key).valueAsBool(key, def);
}

int ObjectPropertiesPrivate::valueAsInt32(const std::string& key, const int& def) const
{
    return rootGroup(key).valueAsInt32(key, def);
}

long ObjectPropertiesPrivate::valueAsInt64(const std::string& key, const long& def) const
{
    return rootGroup(key).valueAsInt64(key, def);
}

double ObjectPropertiesPrivate::valueAsDouble(const std::string& key, const double& def) const
{
    return rootGroup(key).valueAsDouble(key, def);
}

long ObjectPropertiesPrivate::valueAsTime(const std::string& key, const long& def) const
{
    return rootGroup(key).valueAsTime(key, def);
}

std::string ObjectPropertiesPrivate::valueAsId(const std::string& key, const std::string& def) const
{
    return rootGroup(key).valueAsId(key, def);
}

std::vector<unsigned char> ObjectPropertiesPrivate::valueAsBinary(const std::string& key,
                                                                  const std::vector<unsigned char>& def) const
{
    return rootGroup(key).valueAsBinary(key, def);
}

std::pair<std::string, std::string> ObjectPropertiesPrivate::valueAsRegex(const std::string& key,
                                                                          const std::string& pattern,
                                                                          const std::string& options) const
{
    return rootGroup(key).valueAsRegex(key, pattern, options);
}

void ObjectPropertiesPrivate::copy(const ObjectPropertiesPrivate& other)
{
    root->copy(*other.root);
    current = root;
}

void ObjectPropertiesPrivate::copyWithCursor(const ObjectPropertiesPrivate& other)
{
    const std::vector<int> positions = other.positionsToCursor();
    copy(other);
    for (auto position = positions.rbegin(); position != positions.rend(); ++position)
        beginObject(*position);
}

// The indexes that lead from the root to the cursor, innermost first; none when the cursor is outside the tree. Keys
// would not do: elements of a list share one.
std::vector<int> ObjectPropertiesPrivate::positionsToCursor() const
{
    std::vector<int> positions;
    for (auto node = current; node != root;)
    {
        auto parent = PropertyTree::parentOf(*node);
        if (!parent)
            return {};
        int position = 0;
        auto entry = parent->begin();
        for (; entry != parent->end() && entry->second != node; ++entry)
            ++position;
        if (entry == parent->end())
            return {};
        positions.push_back(position);
        node = std::move(parent);
    }
    return positions;
}

void ObjectPropertiesPrivate::include(const std::string& key, const ObjectPropertiesPrivate& other)
{
    Property& anchor = rootGroup(key);
    Property* target = property_paths::find(anchor, key);
    if (!target || !target->isGroup())
        target = anchor.createGroup(key).get();
    becomeGroupLike(*target, other);
}

void ObjectPropertiesPrivate::includeElement(const std::string& key, const ObjectPropertiesPrivate& other)
{
    becomeGroupLike(*rootGroup(key).createGroup(key), other);
}

// The target keeps its key, and is a group even if the other root was given a value.
void ObjectPropertiesPrivate::becomeGroupLike(Property& target, const ObjectPropertiesPrivate& other)
{
    PropertyTree::assume(target, *other.root, target.keyView());
    PropertyTree::becomeGroup(target);
}

void ObjectPropertiesPrivate::exclude(const std::string& key, ObjectPropertiesPrivate& other)
{
    const auto [parent, entry] = property_paths::locate(rootGroup(key), key);
    if (!parent)
        return;
    const auto node = entry->second;
    PropertyTree::assume(*other.root, *node, std::string());
    other.current = other.root;
    if (&other == this)
        return; // the node went with everything else that this document held
    PropertyTree::removeChild(*parent, entry);
    leave(*node);
}

// A node that was removed keeps its parent link, so every step up is checked against the parent's children.
bool ObjectPropertiesPrivate::moveTo(const std::shared_ptr<Property>& node) const
{
    for (auto place = node; place != root;)
    {
        const auto parent = place ? PropertyTree::parentOf(*place) : nullptr;
        if (!parent || !PropertyTree::holds(*parent, *place))
            return false;
        place = parent;
    }
    current = node;
    return true;
}

// The children are held, not pointed at: the visitor may remove any of them.
void ObjectPropertiesPrivate::visitChildren(bool (*visit)(void* visitor), void* visitor) const
{
    std::vector<std::shared_ptr<Property>> children;
    children.reserve(current->childCount());
    for (const auto& entry : *current)
        children.push_back(entry.second);

    const CursorReturn cursorReturn(current);
    for (auto& child : children)
    {
        current = std::move(child);
        if (!visit(visitor))
            return;
    }
}

// A cursor inside the subtree goes to the root, any other stays.
void ObjectPropertiesPrivate::leave(const Property& subtree) const
{
    for (auto node = current; node; node = PropertyTree::parentOf(*node))
    {
        if (node.get() == &subtree)
        {
            current = root;
            return;
        }
    }
}

void ObjectPropertiesPrivate::print() const
{
    root->print();
}
