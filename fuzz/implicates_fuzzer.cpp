// Feeds the reader of prime implicates with any bytes, in the file beside a model. Whatever they are, there are errors that can be
// shown and no implicates, or a plant that takes a step with them.
#include "fuzz/FuzzPlant.h"
#include "plant/Implicates.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace {

/// A folder for the model and its implicates, which is gone at the end.
class Folder {
public:
    Folder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "itms-fuzz-XXXXXX").string();
        require(mkdtemp(name.data()) != nullptr, "there is a temporary folder");
        path_ = name;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    std::string operator/(const char* name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Folder folder;
    std::ofstream(folder / "plant.pi", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    const auto read = [] {
        return language::readModelText(folder / "plant.itms", FuzzPlant::text());
    };
    const plant::ImplicateFile checked = plant::checkImplicates(*read().model);
    require(checked.found, "the file is there");
    for (const text::Diagnostic& error : checked.errors) {
        requireShown(error);
    }
    try {
        FuzzPlant plant(read());
        require(checked.errors.empty(), "a plant takes no implicates that are in error");
        plant.advance(4);
        require(!plant.session().answer().hypotheses.empty(), "something is believed after a step");
    } catch (const session::ModelErrors& failure) {
        require(!checked.errors.empty(), "implicates without an error are taken");
        require(failure.errors().size() == checked.errors.size(), "and all errors are told of");
    }
    return 0;
}
