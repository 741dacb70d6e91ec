#include "Config.h"
#include "MemoryFile.h"

#include <chrono>
#include <filesystem>

using VARNO::Config;

namespace {

/// The settings are read anew where the file's time has changed.
void GiveTimeOfItsOwn(const std::string &path) {
    static std::filesystem::file_time_type time{};
    std::filesystem::last_write_time(path, time += std::chrono::seconds(1));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const MemoryFile file(data, size);
    GiveTimeOfItsOwn(file.Path());
    Config::SetUserFile(file.Path());
    for (const char *key :
         {"Axis", "RotationStep", "TransNum", "TransStep", "TopList", "Output", "Marginal", "Absent"}) {
        const VARNO::Setting setting = Config::GetSetting("Morvanex", key);
        setting.ToInt();
        setting.ToFloat();
        setting.ToString();
    }
    return 0;
}
