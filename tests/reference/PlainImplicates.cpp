#include "tests/reference/PlainEngine.h"

#include <cstdio>
#include <iostream>

namespace {

// The pieces between the separators, the last one running to the end; an empty text is one empty piece.
std::vector<std::string> cut(const std::string& text, char separator)
{
    std::vector<std::string> pieces(1);
    for (char c : text) {
        if (c == separator) {
            pieces.emplace_back();
        } else {
            pieces.back() += c;
        }
    }
    return pieces;
}

// Owned until the table takes it.
struct ImplicateList {
    PiTable::Implicates* sets = new PiTable::Implicates;

    ImplicateList() = default;
    ImplicateList(const ImplicateList&) = delete;
    ImplicateList& operator=(const ImplicateList&) = delete;
    ~ImplicateList()
    {
        if (sets != nullptr) {
            for (std::vector<Atom*>* set : *sets) {
                delete set;
            }
            delete sets;
        }
    }
};

} // namespace

int PlainEngine::readPI()
{
    const std::string fileName = model_name + ".pi";
    piTable = newPiTable();
    std::FILE* file = std::fopen(fileName.c_str(), "r");
    if (file == nullptr) {
        std::cout << "can't open " << fileName << std::endl;
        return 0;
    }
    std::cout << "*** File " << fileName << " found. Reading file...\n";
    std::string text;
    char buffer[1024];
    while (std::fgets(buffer, 1024, file) != nullptr) {
        text += buffer;
    }
    std::fclose(file);

    std::string line;
    for (char c : text) {
        if (c != '\n') {
            line += c;
            continue;
        }
        if (readImplicateLine(line) == -1) {
            return -1;
        }
        line.clear();
    }
    piTable->showAllPI();
    return 1;
}

int PlainEngine::readImplicateLine(const std::string& line)
{
    ImplicateList list;
    const std::size_t colon = line.find(':');
    const std::string head = line.substr(0, colon);
    const std::string rest = colon == std::string::npos ? line : line.substr(colon + 1);
    const std::string compPart = head.substr(0, head.find('.'));
    bool found = false;
    for (auto& entry : *active_comps) {
        if (entry.second->altName == compPart) {
            found = true;
            break;
        }
    }
    if (!found) {
        std::cout << "Component not found: " << compPart << std::endl;
    }
    Atom* headAtom = getAtom(head.c_str());
    if (headAtom == nullptr) {
        std::cerr << "Atom not found: " << head << std::endl;
        return -1;
    }
    const std::vector<std::string> implicates = cut(rest, ',');
    if (implicates.front().empty()) {
        return 1;
    }
    for (const std::string& implicate : implicates) {
        list.sets->push_back(new std::vector<Atom*>);
        for (const std::string& name : cut(implicate, ' ')) {
            Atom* atom = getAtom(name.c_str());
            if (atom == nullptr) {
                std::cerr << "Atom not found: " << name << std::endl;
                return -1;
            }
            list.sets->back()->push_back(atom);
        }
    }
    piTable->addPIAtom(headAtom, list.sets);
    list.sets = nullptr;
    return 1;
}
