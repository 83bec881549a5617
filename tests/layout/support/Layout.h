#pragma once

#include <gmock/gmock.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <typeindex>
#include <vector>

/// How classes lie in memory, and in which order their virtual operations stand in their tables, as the
/// Itanium C++ ABI lays them out on all machines that the daemon is built for. Nothing is constructed
/// and nothing is called: pointers to members say all of it.
///
/// What is private is reached in an explicit instantiation, whose arguments are not subject to access
/// checks, so that the daemon's headers need not know of these tests.
namespace layout {

/// A field by its place in the class.
struct Field {
    std::size_t offset;
    std::size_t size;
    std::size_t alignment;
    std::type_index type;

    std::size_t end() const { return offset + size; }
};

template <typename Class, typename Type>
Field describe(Type Class::*field) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof field == sizeof offset, "a pointer to a field is its offset");
    std::memcpy(&offset, &field, sizeof offset);
    return {static_cast<std::size_t>(offset), sizeof(Type[1]), alignof(Type), typeid(Type)};
}

template <typename Class>
struct Of {};

/// `template struct layout::Fields<Class, &Class::first, ...>;` in the global namespace gives
/// `fieldsOf(Of<Class>)`, to be declared beside it, its meaning.
template <typename Class, auto... Members>
struct Fields {
    friend std::vector<Field> fieldsOf(Of<Class>) { return {describe(Members)...}; }
};

/// The same for statics: their types.
template <typename Class, auto... Members>
struct Statics {
    friend std::vector<std::type_index> staticsOf(Of<Class>) { return {typeid(*Members)...}; }
};

/// The same for enumerators.
template <typename Class, auto... Enumerators>
struct Values {
    friend std::vector<long long> valuesOf(Of<Class>) {
        return {static_cast<long long>(Enumerators)...};
    }
};

constexpr std::size_t alignedTo(std::size_t alignment, std::size_t offset) {
    return (offset + alignment - 1) / alignment * alignment;
}

/// That the fields follow one another with nothing in between, and that nothing of the class's own
/// stands ahead of them; `ahead` is the size of its base, or of the pointer to its table.
inline void expectInOrder(const std::vector<Field>& fields, std::size_t ahead) {
    ASSERT_FALSE(fields.empty());
    EXPECT_LE(fields.front().offset, alignedTo(fields.front().alignment, ahead)) << "the first field";
    for (std::size_t i = 1; i < fields.size(); ++i) {
        EXPECT_EQ(fields[i].offset, alignedTo(fields[i].alignment, fields[i - 1].end()))
            << "field " << i + 1;
    }
}

using Types = std::vector<std::type_index>;

inline Types typesOf(const std::vector<Field>& fields) {
    Types types;
    for (const Field& field : fields)
        types.push_back(field.type);
    return types;
}

/// The same of fields that have these types, in their order.
inline void expectFields(const std::vector<Field>& fields, std::size_t ahead, const Types& types) {
    expectInOrder(fields, ahead);
    EXPECT_EQ(typesOf(fields), types);
}

/// Of a field that is a pointer, and of what an object with virtual operations begins with.
constexpr std::size_t kPointer = sizeof(void*);

/// A virtual destructor has two: one that destroys, one that deletes as well.
constexpr std::size_t kDestructorSlots = 2;

/// What a pointer to an operation consists of. One of the two numbers is odd for a virtual operation,
/// whose place in the table, in bytes, is the first one then, rounded down.
struct OperationPointer {
    std::size_t place;
    std::size_t adjustment;
};

template <typename Signature, typename Class>
OperationPointer split(Signature Class::*operation) {
    OperationPointer pointer{};
    static_assert(std::is_function_v<Signature> && sizeof operation == sizeof pointer);
    std::memcpy(&pointer, &operation, sizeof pointer);
    return pointer;
}

struct WithOne {
    virtual void one() = 0;
};

/// Where the first number may be odd for an ordinary operation, as on ARM, it is the second.
inline bool isVirtual(const OperationPointer& pointer) {
    const bool secondTells = (split(&WithOne::one).adjustment & 1) != 0;
    return ((secondTells ? pointer.adjustment : pointer.place) & 1) != 0;
}

/// The slot of a virtual operation. Of several operations with one name, the signature chooses one.
template <typename Signature, typename Class>
std::size_t slotOf(Signature Class::*operation) {
    const OperationPointer pointer = split(operation);
    EXPECT_TRUE(isVirtual(pointer)) << "no virtual operation";
    return (pointer.place & ~std::size_t{1}) / sizeof(void*);
}

/// A class whose operation takes the first slot behind the base's.
template <typename Base>
struct WithOneMore : Base {
    virtual void oneMore() = 0;
};

template <typename Class>
std::size_t numberOfSlots() {
    return slotOf(&WithOneMore<Class>::oneMore);
}

} // namespace layout
