#pragma once

#include "models/string_c.hpp"

namespace zentable {

// The root of everything the model store keeps.
class base_c {
  public:
    virtual ~base_c() = default;
};

// A reference-counted owner of a kept object; the last handle destroys it.
class base_handle_c : public base_c {
  public:
    ~base_handle_c() override { release(); }

    bool is_empty() const { return body == nullptr; }
    const base_c* getBody() const { return body; }
    base_c* getBodyVolatile() const { return body; }
    base_c* operator->() const { return body; }
    long use_count() const { return count ? *count : 0; }

  protected:
    explicit base_handle_c(base_c* b = nullptr, bool no_delete_body = false)
        : body(b), count(new long(1)), no_delete(no_delete_body) {}
    base_handle_c(const base_handle_c& other)
        : base_c(), body(other.body), count(other.count), no_delete(other.no_delete) {
        ++*count;
    }
    base_handle_c& operator=(const base_handle_c& other) {
        if (other.body == body)
            return *this;
        ++*other.count;
        release();
        body = other.body;
        count = other.count;
        no_delete = other.no_delete;
        return *this;
    }

  private:
    void release() {
        if (--*count > 0)
            return;
        if (!no_delete)
            delete body;
        delete count;
    }

    base_c* body;
    long* count;
    bool no_delete;
};

template <class T>
class handle_c : public base_handle_c {
  public:
    handle_c() = default;
    explicit handle_c(T* model, bool no_delete_body = false)
        : base_handle_c(model, no_delete_body) {}
    handle_c(const handle_c& other) = default;
    handle_c& operator=(const handle_c& other) = default;

    T* operator->() const { return static_cast<T*>(getBodyVolatile()); }
    const T& operator*() const { return *static_cast<const T*>(getBody()); }
};

}  // namespace zentable
