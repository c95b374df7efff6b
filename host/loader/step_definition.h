#pragma once

// The XML by which plug-ins define the parameters of their script steps.

#include "host/script/external_step.h"

#include <stdexcept>
#include <string_view>
#include <vector>

namespace host {

// Thrown for a definition that cannot be read; what() says why, without the step's name.
class DefinitionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Returns the parameters in the order of the definition; none for an empty text. Throws DefinitionError. The
// root element, whatever its name, has an element for each parameter:
//
//   <PlugInStep>
//       <Parameter Type="calc" ID="0" Label="To" DataType="text"/>
//       <Parameter Type="bool" ID="1" Label="Urgent" Default="true"/>
//       <Parameter Type="list" ID="2" Label="Colour" Default="1">
//           <Value ID="0">Red</Value>
//           <Value ID="1">Green</Value>
//       </Parameter>
//       <Parameter Type="target" ID="3" Label="Into"/>
//   </PlugInStep>
//
// DataType is text, number, date, time, timestamp or container. The ID of a parameter is its index among the
// values that the step gets, the ID of a Value the number that stands for the word. A missing ID is the one
// before plus 1. Other elements and attributes are ignored.
std::vector<StepParameter> parseStepDefinition(std::u16string_view xml);

} // namespace host
