#pragma once

// A double of the plug-in's idle hook, which has no visible effect: counts its calls.
namespace idle_double {

[[nodiscard]] int calls();

} // namespace idle_double
