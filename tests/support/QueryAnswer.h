#pragma once

#include <string>
#include <vector>

#include "QueryStructure.h"
#include "TestClient.h"

namespace testsupport {

/// What a query function hands out for a client: arrays, of which the first may be a structure.
class QueryAnswer {
public:
    QueryAnswer(void (*answer)(nbArray**, const nbArray**), const TestClient& client) {
        const dspwavedecks::NbArrayPointer name(nbCreateString(client.name().c_str()));
        const nbArray* arguments[] = {name.get()};
        nbArray* results[12] = {};
        answer(results, arguments);
        for (nbArray* result : results) {
            if (result != nullptr) {
                arrays.emplace_back(result);
            }
        }
    }

    std::size_t size() const { return arrays.size(); }
    const nbArray* array(std::size_t place) const { return arrays.at(place).get(); }
    double number(std::size_t place = 0) const { return nbGetScalar(array(place)); }
    std::vector<double> numbers(std::size_t place) const { return numbersOf(array(place)); }
    bool isTrue(std::size_t place = 0) const { return number(place) != 0.0; }

    std::vector<std::string> fields() const {
        std::vector<std::string> names;
        for (int i = 0; i < nbGetNumberOfFields(array(0)); ++i) {
            names.emplace_back(nbGetFieldNameByNumber(array(0), i));
        }
        return names;
    }
    const nbArray* field(const char* name) const { return nbGetField(array(0), 0, name); }
    double number(const char* name) const { return nbGetScalar(field(name)); }
    std::vector<double> numbers(const char* name) const { return numbersOf(field(name)); }

private:
    static std::vector<double> numbersOf(const nbArray* array) {
        const double* const values = nbGetDoubles(array);
        return {values, values + nbGetNumberOfElements(array)};
    }

    std::vector<dspwavedecks::NbArrayPointer> arrays;
};

}  // namespace testsupport
