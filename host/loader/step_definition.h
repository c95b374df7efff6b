#pragma once

// The XML by which plug-ins say what parameters their script steps have.

#include "host/script/external_step.h"

#include <stdexcept>
#include <string_view>
#include <vector>

namespace host {

// A definition that can not be read; what() says why, without the step's name.
class DefinitionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The parameters in the order of the definition; none for an empty text. The root element holds one element
// each:
//   <Parameter Type="calc" ID="0" Label="To" DataType="text"/>   DataType: text, number, date, time,
//   timestamp, container <Parameter Type="bool" ID="1" Label="Urgent" Default="true"/> <Parameter Type="list"
//   ID="2" Label="Colour" Default="1"><Value ID="0">Red</Value><Value ID="1">Green</Value></Parameter>
//   <Parameter Type="target" ID="3" Label="Into"/>
// The ID is the parameter's place among the values of the step, and the number of a list's value; without one
// it is the next after the one before. Other elements and attributes are passed over. Throws DefinitionError.
std::vector<StepParameter> parseStepDefinition(std::u16string_view xml);

} // namespace host
