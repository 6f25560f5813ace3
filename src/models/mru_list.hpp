#pragma once

#include <iterator>
#include <list>
#include <string>

#include "models/handle.hpp"

namespace zentable {

// A unique number for each model filed in this process; never reused, so an
// old handle left in a sheet can never name a newer model.
long long next_model_number();

template <class T>
class entry_c : public base_c {
  public:
    entry_c(const string_c& k, const handle_c<T>& h) : key(k), handle(h) {}
    string_c key;
    handle_c<T> handle;
};

// The models of one class, most recently used first. Past capacity the least
// recently used model is dropped with its entry.
template <class T>
class mru_list_c : public base_c {
  public:
    mru_list_c(int list_capacity, std::string name)
        : capacity(list_capacity), class_name(std::move(name)) {}

    string_c add(const handle_c<T>& handle) {
        std::string key = class_name;
        if (key.find(':') == std::string::npos)
            key += "-";
        key += ">";
        key += std::to_string(next_model_number());
        entries.emplace_front(string_c(key), handle);
        if (static_cast<long long>(entries.size()) > capacity)
            entries.pop_back();
        return entries.front().key;
    }

    // A read moves the model to the front: eviction is by least recent use.
    handle_c<T> find(const string_c& key, bool quiet) {
        for (auto it = entries.begin(); it != entries.end(); ++it) {
            if (it->key == key) {
                entries.splice(entries.begin(), entries, it);
                return entries.front().handle;
            }
        }
        if (quiet)
            return handle_c<T>();
        throw "Error: could not find \"" + std::string(key) + "\" for " + class_name +
            "; please rebuild the model.";
    }

    std::size_t size() const { return entries.size(); }

    std::list<entry_c<T>> entries;
    int capacity;
    std::string class_name;
};

}  // namespace zentable
