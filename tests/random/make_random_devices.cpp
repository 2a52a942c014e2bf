// Makes random devices that two platforms can hold: DIRECTORY/0 from SEED, DIRECTORY/1 from the
// seed after it and so on.
//
// usage: make_random_devices DIRECTORY SEED COUNT

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tests/random/random_device.h"

int main(int count, char** words) {
    if (count != 4) {
        return 2;
    }
    const std::string directory = words[1];
    for (std::uint64_t number = 0; number < std::strtoull(words[3], nullptr, 10); ++number) {
        const RandomDevice random(std::strtoull(words[2], nullptr, 10) + number, directory,
                                  RandomDevice::Kind::OfTwoPlatforms);
        std::filesystem::rename(random.device().path(), directory + '/' + std::to_string(number));
    }
    return testing::UnitTest::GetInstance()->Failed() ? 1 : 0;
}
