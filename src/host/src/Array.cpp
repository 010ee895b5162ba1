#include "foundation/numbenchdata/Array.h"

#include <algorithm>
#include <utility>

namespace foundation::numbenchdata {

InvalidArrayTypeException::~InvalidArrayTypeException() = default;

Array::~Array() = default;

Array::Array(ArrayType type, std::size_t size, std::shared_ptr<const void> elements)
    : type_(type), size_(size), elements_(std::move(elements)) {}

const void* Array::elements() const {
    static const double none = 0.0;
    return elements_ ? elements_.get() : &none;
}

void detail::requireType(const Array& array, ArrayType expected) {
    if (array.getType() != expected) {
        throw InvalidArrayTypeException("array holds elements of another type");
    }
}

NumbenchStringReferenceExt::operator std::u16string() const {
    if (!element_) {
        throw InvalidArrayTypeException("the missing string has no text");
    }
    return *element_;
}

std::u16string CharArray::toUTF16() const {
    std::u16string text;
    text.reserve(getNumberOfElements());
    for (const char16_t unit : *this) {
        text.push_back(unit);
    }
    return text;
}

template <typename T, typename Source>
Array ArrayFactory::create(const Source& values) {
    // One element at least, so that an empty array has an address too.
    std::shared_ptr<T[]> elements(new T[std::max<std::size_t>(values.size(), 1)]{});
    std::copy(values.begin(), values.end(), elements.get());
    return Array(detail::arrayTypeOf<T>(), values.size(), std::shared_ptr<const void>(elements, elements.get()));
}

Array ArrayFactory::createDouble(const std::vector<double>& values) {
    return create<double>(values);
}
Array ArrayFactory::createInt(const std::vector<int>& values) {
    return create<int>(values);
}
Array ArrayFactory::createLogical(const std::vector<bool>& values) {
    return create<bool>(values);
}
Array ArrayFactory::createChar(const std::u16string& text) {
    return create<char16_t>(text);
}

Array ArrayFactory::createChar(const std::string& text) {
    std::u16string wide;
    wide.reserve(text.size());
    for (const char byte : text) {
        wide.push_back(static_cast<unsigned char>(byte));
    }
    return createChar(wide);
}

Array ArrayFactory::createString(const std::vector<OptionalString>& values) {
    return create<OptionalString>(values);
}
Array ArrayFactory::createCell(const std::vector<Array>& values) {
    return create<Array>(values);
}

}  // namespace foundation::numbenchdata
