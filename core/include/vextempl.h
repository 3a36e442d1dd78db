// The module's growable array: the standard vector under the module's name.
#pragma once

#include <vector>

template <class T>
using VexArray = std::vector<T>;
