#include "report/Page.h"

#include "report/PageTemplate.h"

namespace report {

PageWriter::PageWriter(Sink sink, PageFacts facts, const plant::Plant& plant,
                       const language::ReadResult& model, const Shown& shown)
    : sink_(std::move(sink)), facts_(std::move(facts)), plant_(plant), model_(model),
      story_(plant, model, shown)
{
}

void PageWriter::end(std::size_t linesLeftOut)
{
    facts_.linesLeftOut = linesLeftOut;
    const std::string_view page = pageTemplate();
    const std::size_t at = page.find(pageDataMark);
    sink_(page.substr(0, at));
    writePageJson(sink_, facts_, model_, plant_, story_);
    sink_(page.substr(at + pageDataMark.size()));
}

} // namespace report
