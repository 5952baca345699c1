#include "core/linux/SensorKeys.h"

#include "core/SMCProtocol.h"

#include <algorithm>

namespace sysinfo::platform {

namespace {

constexpr std::string_view numbers = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";
// Without 'S': a temperature's key that ends with "SP" would name a set point.
constexpr std::string_view chips = "0123456789ABCDEFGHIJKLMNOPQRTUVWXYZabcdefghijklmnopqrstuvwxyz";
constexpr int maxFans = 16;

uint64_t fnv1a(std::string_view text) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text) hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001b3;
    return hash;
}

std::string ownerName(char kind, char sensorClass, std::string_view identity) {
    return std::string{kind, sensorClass} + std::string(identity);
}

} // namespace

uint32_t SensorKeys::assign(SensorKind kind, SensorClass sensorClass, std::string_view identity, int number) {
    const Owner owner{ownerName(keyLetter(kind), static_cast<char>(sensorClass), identity), number};
    const auto known = keys_.find(owner);
    if (known != keys_.end()) return known->second;
    const uint32_t key = kind == SensorKind::fan
                             ? firstFreeFan()
                             : firstFree(kind, sensorClass, rowOf(sensorClass, identity), number);
    return keys_[owner] = key;
}

uint32_t SensorKeys::assignNamed(uint32_t key, std::string_view identity, int number) {
    const Owner owner{ownerName(smcCharacter(key, 0), '=', identity), number};
    const auto known = keys_.find(owner);
    if (known != keys_.end()) return known->second;
    return keys_[owner] = take(key) ? key : 0;
}

size_t SensorKeys::rowOf(SensorClass sensorClass, std::string_view identity) {
    const std::pair chip(sensorClass, std::string(identity));
    const auto known = rows_.find(chip);
    if (known != rows_.end()) return known->second;
    const auto isUsed = [&](size_t row) {
        return std::any_of(rows_.begin(), rows_.end(), [&](const auto& other) {
            return other.first.first == sensorClass && other.second == row;
        });
    };
    size_t row = fnv1a(identity) % chips.size();
    for (size_t step = 0; step < chips.size() && isUsed(row); ++step) row = (row + 1) % chips.size();
    return rows_[chip] = row; // a chip too many shares a row; its sensors then take what is free
}

uint32_t SensorKeys::firstFree(SensorKind kind, SensorClass sensorClass, size_t row, int number) {
    const size_t places = chips.size() * numbers.size();
    const size_t wanted = row * numbers.size() + static_cast<size_t>(std::max(number, 0));
    for (size_t step = 0; step < places; ++step) {
        const size_t place = (wanted + step) % places;
        const char text[] = {keyLetter(kind), static_cast<char>(sensorClass), chips[place / numbers.size()],
                             numbers[place % numbers.size()]};
        const uint32_t key = smcCode({text, 4});
        if (take(key)) return key;
    }
    return 0;
}

uint32_t SensorKeys::firstFreeFan() {
    for (size_t digit = 0; digit < maxFans; ++digit) {
        const char text[] = {'F', numbers[digit], 'A', 'c'};
        const uint32_t key = smcCode({text, 4});
        if (take(key)) return key;
    }
    return 0;
}

} // namespace sysinfo::platform
