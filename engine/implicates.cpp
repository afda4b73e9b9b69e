// The prime-implicate file, MODEL.pi: for an atom, the sets of atoms that together imply it.
//
//     valve.pos=closed:sensor.flow=zero pump.state=on,sensor.press=low
//
// gives valve.pos=closed two sets, {sensor.flow=zero, pump.state=on} and {sensor.press=low}. Nothing is trimmed:
// a stray space makes an empty name, which no atom has, and ends the reading. Characters after the last
// newline are not a line. Linear in the file, except that each head is looked for among the components' names.
#include "engine/itms.h"
#include "model/trace.h"

#include <cstdio>
#include <string_view>
#include <utility>

namespace {

std::string readAll(std::FILE* file)
{
    std::string text;
    char chunk[1024];
    while (std::fgets(chunk, sizeof chunk, file)) {
        text += chunk;
    }
    return text;
}

std::vector<std::string> cut(const std::string& text, char separator)
{
    std::vector<std::string> pieces;
    std::size_t from = 0;
    for (std::size_t at = text.find(separator); at != std::string::npos;
         at = text.find(separator, from)) {
        pieces.push_back(text.substr(from, at - from));
        from = at + 1;
    }
    pieces.push_back(text.substr(from));
    return pieces;
}

// The lines that a newline ends.
std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines = cut(text, '\n');
    lines.pop_back();
    return lines;
}

bool componentKnown(const CompMap& comps, std::string_view name)
{
    for (const auto& [id, comp] : comps) {
        if (comp->altName == name) {
            return true;
        }
    }
    return false;
}

// The implicate sets while they are being read; the table takes them over.
class ImplicateList {
public:
    ImplicateList() = default;
    ~ImplicateList()
    {
        for (const std::vector<Atom*>* set : *sets_) {
            delete set;
        }
    }
    ImplicateList(const ImplicateList&) = delete;
    ImplicateList& operator=(const ImplicateList&) = delete;

    std::vector<Atom*>& addSet()
    {
        sets_->push_back(new std::vector<Atom*>);
        return *sets_->back();
    }
    PiTable::Implicates* release()
    {
        return std::exchange(sets_, std::make_unique<PiTable::Implicates>()).release();
    }

private:
    std::unique_ptr<PiTable::Implicates> sets_ = std::make_unique<PiTable::Implicates>();
};

// Looks atoms up and reports the ones that are not there.
Atom* atomNamed(itms& engine, const std::string& name)
{
    Atom* atom = engine.getAtom(name.c_str());
    if (!atom) {
        std::cerr << "Atom not found: " << name << std::endl;
    }
    return atom;
}

bool readLine(itms& engine, const std::string& line)
{
    const std::size_t colon = line.find(':');
    const std::string head = line.substr(0, colon);
    const std::string component = head.substr(0, head.find('.'));
    if (!componentKnown(*DataManager::active_comps, component)) {
        std::cout << "Component not found: " << component << std::endl;
    }
    Atom* const headAtom = atomNamed(engine, head);
    if (!headAtom) {
        return false;
    }
    // Without a colon the whole line is read as the implicates too.
    const std::vector<std::string> texts =
        cut(line.substr(colon == std::string::npos ? 0 : colon + 1), ',');
    if (texts.front().empty()) {
        return true;
    }
    ImplicateList implicates;
    for (const std::string& text : texts) {
        std::vector<Atom*>& set = implicates.addSet();
        for (const std::string& name : cut(text, ' ')) {
            Atom* const atom = atomNamed(engine, name);
            if (!atom) {
                return false;
            }
            set.push_back(atom);
        }
    }
    engine.piTable->addPIAtom(headAtom, implicates.release());
    return true;
}

} // namespace

int itms::readPI()
{
    const std::string fileName = model_name + ".pi";
    piTable = newPiTable();
    std::FILE* file = std::fopen(fileName.c_str(), "r");
    if (!file) {
        std::cout << "can't open " << fileName << std::endl;
        return 0;
    }
    std::cout << "*** File " << fileName << " found. Reading file...\n";
    const std::string text = readAll(file);
    std::fclose(file);
    for (const std::string& line : linesOf(text)) {
        if (!readLine(*this, line)) {
            return -1;
        }
    }
    piTable->showAllPI();
    return 1;
}
