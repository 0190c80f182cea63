// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/records/Error.h"

#include <memory>
#include <vector>

namespace dao
{

/// A named collection of objects that it owns: fields, indexes, tables, parameters. Names are compared without regard
/// to case; order is the order of creation. An owner that stores what is appended derives from it and
/// overrides Store. References given out live until the collection goes.
template <typename Object>
class Collection
{
public:
    Collection() = default;
    virtual ~Collection() = default;
    Collection(const Collection&) = delete;
    Collection& operator=(const Collection&) = delete;

    int Count() const { return static_cast<int>(Objects_.size()); }

    /// Error 3265 when there is no such item.
    Object& Item(const QString& name) const
    {
        for (const auto& object : Objects_) {
            if (object->Name().compare(name, Qt::CaseInsensitive) == 0)
                return *object;
        }
        throw Error(errItemNotFound, QStringLiteral("Item '%1' not found in this collection.").arg(name));
    }
    /// index: from 0. Error 3265 outside.
    Object& Item(int index) const
    {
        if (index < 0 || index >= Count())
            throw Error(errItemNotFound, QStringLiteral("Item %1 not found in this collection.").arg(index));
        return *Objects_[static_cast<std::size_t>(index)];
    }

    /// Takes the object, and stores it in the file where the collection is that of a stored object. The error of a
    /// failed append leaves the collection as it was.
    void Append(std::unique_ptr<Object> object)
    {
        Store(*object);
        Objects_.push_back(std::move(object));
    }

protected:
    virtual void Store(Object& object) { static_cast<void>(object); }
    void Clear() { Objects_.clear(); }
    void Add(std::unique_ptr<Object> object) { Objects_.push_back(std::move(object)); }

private:
    std::vector<std::unique_ptr<Object>> Objects_;
};

} // namespace dao
