#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <vector>

#include "numbench/Exception.h"
#include "wavedeck/Visibility.h"

/// The host's array layer: values of options, typed at run time.
namespace foundation::numbenchdata {

/// Element kinds of an array.
enum class ArrayType { Double, Int, Logical, Char, String, Cell };

/// Thrown where an array is read as another element kind than it holds.
class WAVEDECK_API InvalidArrayTypeException : public numbench::Exception {
public:
    explicit InvalidArrayTypeException(const std::string& text) : numbench::Exception(text) {}
    ~InvalidArrayTypeException() override;
};

/// One element of a string array; an absent optional is the host's missing string.
using OptionalString = std::optional<std::u16string>;

/// An immutable array of one element kind. Copies share the elements, which live as long as the last copy.
class WAVEDECK_API Array {
public:
    Array() = default;
    ~Array();
    Array(const Array&) = default;
    Array& operator=(const Array&) = default;

    ArrayType getType() const { return type_; }
    std::size_t getNumberOfElements() const { return size_; }

protected:
    Array(ArrayType type, std::size_t size, std::shared_ptr<const void> elements);

    /// First element, as kept for the array's element kind; never null.
    const void* elements() const;

private:
    friend class ArrayFactory;

    ArrayType type_ = ArrayType::Double;
    std::size_t size_ = 0;
    std::shared_ptr<const void> elements_;
};

namespace detail {

/// The element kind under which elements of C++ type T are kept.
template <typename T>
constexpr ArrayType arrayTypeOf() {
    if constexpr (std::is_same_v<T, double>) {
        return ArrayType::Double;
    } else if constexpr (std::is_same_v<T, int>) {
        return ArrayType::Int;
    } else if constexpr (std::is_same_v<T, bool>) {
        return ArrayType::Logical;
    } else if constexpr (std::is_same_v<T, char16_t>) {
        return ArrayType::Char;
    } else if constexpr (std::is_same_v<T, OptionalString>) {
        return ArrayType::String;
    } else {
        static_assert(std::is_same_v<T, Array>, "no element kind holds this type");
        return ArrayType::Cell;
    }
}

/// Throws InvalidArrayTypeException unless the array holds elements of the given kind.
WAVEDECK_API void requireType(const Array& array, ArrayType expected);

}  // namespace detail

/// Walks the elements of a typed array.
template <typename T>
class TypedIterator {
public:
    explicit TypedIterator(T* element) : element_(element) {}

    void increment() { ++element_; }
    bool isEqual(const TypedIterator& other) const { return element_ == other.element_; }
    T& getRef() const { return *element_; }

    TypedIterator& operator++() {
        increment();
        return *this;
    }
    bool operator==(const TypedIterator& other) const { return isEqual(other); }
    T& operator*() const { return getRef(); }

private:
    T* element_;
};

/// Reference to one element of a string array, converted on demand.
class WAVEDECK_API NumbenchStringReferenceExt {
public:
    explicit NumbenchStringReferenceExt(const OptionalString& element) : element_(element) {}

    /// The text. Throws InvalidArrayTypeException for the missing string.
    operator std::u16string() const;  // NOLINT(google-explicit-constructor): the host's conversion is implicit

private:
    const OptionalString& element_;
};

/// Typed view of an array. The constructor throws InvalidArrayTypeException if the element kind differs.
template <typename T>
class TypedArray : public Array {
public:
    explicit TypedArray(const Array& array) : Array(array) { detail::requireType(array, detail::arrayTypeOf<T>()); }

    TypedIterator<T const> begin() const { return TypedIterator<T const>(data()); }
    TypedIterator<T const> end() const { return TypedIterator<T const>(data() + getNumberOfElements()); }

    /// Element `index`, which must be below getNumberOfElements(); for string arrays a reference that converts.
    decltype(auto) operator[](std::size_t index) const {
        if constexpr (std::is_same_v<T, OptionalString>) {
            return NumbenchStringReferenceExt(data()[index]);
        } else {
            return (data()[index]);
        }
    }

private:
    const T* data() const { return static_cast<const T*>(elements()); }
};

namespace detail {

/// Element `index` of an array of element type T. Throws InvalidArrayTypeException for another kind or an index
/// that is out of range.
template <typename T>
T getValue(const Array& array, std::size_t index) {
    const TypedArray<T> typed(array);
    if (index >= array.getNumberOfElements()) {
        throw InvalidArrayTypeException("array index out of range");
    }
    auto iterator = typed.begin();
    for (std::size_t i = 0; i < index; ++i) {
        iterator.increment();
    }
    return iterator.getRef();
}

}  // namespace detail

/// A char array: one text. The constructor throws InvalidArrayTypeException for another kind.
class WAVEDECK_API CharArray : public TypedArray<char16_t> {
public:
    explicit CharArray(const Array& array) : TypedArray<char16_t>(array) {}

    std::u16string toUTF16() const;
};

/// Makes arrays.
class WAVEDECK_API ArrayFactory {
public:
    static Array createDouble(const std::vector<double>& values);
    static Array createInt(const std::vector<int>& values);
    static Array createLogical(const std::vector<bool>& values);
    static Array createChar(const std::u16string& text);
    /// Each byte becomes one code unit.
    static Array createChar(const std::string& text);
    static Array createString(const std::vector<OptionalString>& values);
    static Array createCell(const std::vector<Array>& values);

private:
    template <typename T, typename Source>
    static Array create(const Source& values);
};

}  // namespace foundation::numbenchdata
