#pragma once

#include <list>
#include <map>
#include <set>
#include <vector>

namespace kel4 {

template <class T>
using List = std::list<T>;
template <class T>
using Set = std::set<T>;
template <class K, class V>
using Map = std::map<K, V>;
template <class T>
using Vector = std::vector<T>;

/// The closure under which an object's data is considered.
enum class closureId : int {
    All = -1,
    Persistence = 1,  // what is saved: the object's files
    Runtime = 2
};

}  // namespace kel4
