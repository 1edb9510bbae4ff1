#pragma once

#include <object_properties.h>

#include <list>
#include <memory>

// DataBaseClient::find(), read() and aggregate() append documents to a list, and the caller deletes them. This owner of
// such a list does so on every way out, also when the call fails after some documents have arrived.
struct DeleteResults
{
    void operator()(std::list<ObjectProperties*>* results) const
    {
        for (ObjectProperties* const document : *results)
        {
            delete document;
        }
        delete results;
    }
};
using Results = std::unique_ptr<std::list<ObjectProperties*>, DeleteResults>;

inline Results newResults()
{
    return Results(new std::list<ObjectProperties*>);
}
