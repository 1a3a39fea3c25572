// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace zarno {

// A plain value that may be read on one thread while another writes it: every access is a relaxed atomic
// load or store, so a reader sees an old or a new value, never a torn one. It has the size and the layout
// of T, so records made of such fields can be stored byte for byte. It orders nothing else: whoever needs
// several fields to change together sends them through a queue.
template <typename T>
class RelaxedField {
  public:
    RelaxedField() = default;
    constexpr RelaxedField(T value)
        : value_(value) {}

    operator T() const { return load(); }
    T load() const { return std::atomic_ref<T>(const_cast<T&>(value_)).load(std::memory_order_relaxed); }
    RelaxedField& operator=(T value) {
        std::atomic_ref<T>(value_).store(value, std::memory_order_relaxed);
        return *this;
    }

  private:
    static_assert(std::is_trivially_copyable_v<T> && sizeof(T) == 4);
    T value_{};
};

// Copies a record whose first `fieldBytes` are such fields: they may be in use on other threads, the rest
// not.
template <typename Record>
void copyRecord(Record& to, const Record& from, std::size_t fieldBytes) {
    using Word [[gnu::may_alias]] = std::uint32_t; // the fields are integers and floats alike
    static_assert(sizeof(Record) % sizeof(Word) == 0 && std::is_trivially_copyable_v<Record>);
    auto* target = reinterpret_cast<Word*>(&to);
    const auto* source = reinterpret_cast<const Word*>(&from);
    for (std::size_t i = 0; i < fieldBytes / sizeof(Word); ++i)
        __atomic_store_n(target + i, __atomic_load_n(source + i, __ATOMIC_RELAXED), __ATOMIC_RELAXED);
    std::memcpy(reinterpret_cast<char*>(&to) + fieldBytes, reinterpret_cast<const char*>(&from) + fieldBytes,
                sizeof(Record) - fieldBytes);
}

} // namespace zarno
