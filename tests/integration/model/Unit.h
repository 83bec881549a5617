#pragma once

#include <string>

#include "model/Model.h"
#include "model/Request.h"

/// Whoever answers the requests of a sequence, over several links.
class Unit {
public:
    virtual ~Unit() = default;

    /// As new, whatever has happened to it, and whatever it does meanwhile.
    virtual void restart() = 0;

    /// The model of a unit that has just been restarted.
    virtual Model model() const = 0;

    /// Sends the request and takes in all that comes for it. One thread at a time for each link. Where
    /// nothing comes, what has come so far.
    virtual std::string exchange(const Request& request, const Model::Prediction& expected) = 0;

    /// Whether the effect shows sooner or later.
    virtual bool shows(const Effect& effect) = 0;

    /// What `station` calls the link.
    virtual std::string target(int link) const = 0;
};
