#pragma once

// Stands in for the plug-in's idle hook, which has no effect that could be seen: counts its calls.
namespace idle_double {

[[nodiscard]] int calls();

} // namespace idle_double
