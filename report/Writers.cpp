// Records are written by one pair of writers, whatever they are records of; only what is for people is each its own.
#include "report/Writers.h"

namespace report {

namespace {

/// Makes the record of a report, a line that ends with a newline.
template <typename Report> using Record = std::function<std::string(const Report&)>;

/// Whatever the report becomes, one after the other.
template <typename Report> class Lines : public StepWriter<Report> {
public:
    Lines(Sink sink, Record<Report> record) : sink_(std::move(sink)), record_(std::move(record)) {}

    void step(const Report& report) override { sink_(record_(report)); }

private:
    Sink sink_;
    Record<Report> record_;
};

/// A JSON array with a record a line.
template <typename Report> class Array : public StepWriter<Report> {
public:
    Array(Sink sink, Record<Report> record) : sink_(std::move(sink)), record_(std::move(record)) {}

    void step(const Report& report) override
    {
        std::string record = record_(report);
        // Its newline comes when it is known whether there is a comma before it.
        record.pop_back();
        sink_((this->memory_.steps == 0 ? "[\n" : ",\n") + record);
        ++this->memory_.steps;
    }
    void end(std::size_t /*linesLeftOut*/) override
    {
        sink_(this->memory_.steps == 0 ? "[]\n" : "\n]\n");
    }

private:
    Sink sink_;
    Record<Report> record_;
};

/// A table: a heading, rows, a summary.
template <typename Report, typename Table> class TableWriter : public StepWriter<Report> {
public:
    TableWriter(Sink sink, Table table) : sink_(std::move(sink)), table_(std::move(table)) {}

    void begin() override { sink_(table_.heading()); }
    void step(const Report& report) override { sink_(table_.rows(report)); }
    void end(std::size_t linesLeftOut) override { sink_(table_.summary(linesLeftOut)); }

protected:
    Sink sink_;
    Table table_;
};

class TrackingTableWriter : public TableWriter<StepReport, TrackingTable> {
public:
    using TableWriter::TableWriter;

    WriterMemory memory() const override { return {table_.memory().total, table_.memory(), {}}; }
    void resume(const WriterMemory& memory) override { table_.restore(memory.table); }
};

template <typename Report>
std::unique_ptr<StepWriter<Report>> records(Format format, const Sink& sink, Record<Report> record)
{
    if (format == Format::array) return std::make_unique<Array<Report>>(sink, std::move(record));
    return std::make_unique<Lines<Report>>(sink, std::move(record));
}

} // namespace

Writers::Writers(Format format, Colours colours, Sink sink)
    : format_(format), colours_(colours), sink_(std::move(sink))
{
    if (format_ != Format::people) return;
    sink_ = [colours, to = std::move(sink_)](std::string_view text) { to(colours.printable(text)); };
}

std::unique_ptr<StepWriter<StepReport>> Writers::tracking(Shown shown, bool everyStep) const
{
    if (format_ == Format::people)
        return std::make_unique<TrackingTableWriter>(sink_,
                                                     TrackingTable(colours_, shown, everyStep));
    return records<StepReport>(
        format_, sink_, [shown](const StepReport& report) { return stepJson(report, shown); });
}

std::unique_ptr<StepWriter<QueryReport>> Writers::query(bool everyStep) const
{
    if (format_ == Format::people)
        return std::make_unique<TableWriter<QueryReport, QueryTable>>(
            sink_, QueryTable(colours_, everyStep));
    return records<QueryReport>(format_, sink_, queryJson);
}

std::unique_ptr<StepWriter<AdviceReport>> Writers::advice(std::size_t shown) const
{
    const bool asText = format_ == Format::people;
    return records<AdviceReport>(
        Format::lines, sink_, [shown, asText, colours = colours_](const AdviceReport& report) {
            return asText ? adviceText(report, shown, colours) : adviceJson(report, shown);
        });
}

std::unique_ptr<StepWriter<StepReport>> Writers::events(double threshold,
                                                        EventWriter::ClockOf clock) const
{
    std::unique_ptr<StepWriter<EventReport>> writer;
    if (format_ == Format::people) {
        writer = std::make_unique<TableWriter<EventReport, EventTable>>(sink_, EventTable(colours_));
    } else {
        writer = records<EventReport>(format_, sink_, eventJson);
    }
    return std::make_unique<EventWriter>(std::move(writer), threshold, std::move(clock));
}

std::unique_ptr<StepWriter<EvaluationReport>> Writers::evaluation() const
{
    const bool asTable = format_ == Format::people;
    return records<EvaluationReport>(
        Format::lines, sink_, [asTable, colours = colours_](const EvaluationReport& report) {
            return asTable ? evaluationTable(report, colours) : evaluationJson(report);
        });
}

std::unique_ptr<StepWriter<CalibrationReport>> Writers::calibration() const
{
    const bool asTable = format_ == Format::people;
    return records<CalibrationReport>(
        Format::lines, sink_, [asTable, colours = colours_](const CalibrationReport& report) {
            return asTable ? calibrationTable(report, colours) : calibrationJson(report);
        });
}

std::unique_ptr<StepWriter<StepExplanation>> Writers::explanation() const
{
    const bool asText = format_ == Format::people;
    return records<StepExplanation>(
        Format::lines, sink_, [asText, colours = colours_](const StepExplanation& explanation) {
            return asText ? explanationText(explanation, colours) : explanationJson(explanation);
        });
}

std::unique_ptr<StepWriter<Diagnosis>> Writers::diagnoses(const netlist::Circuit& circuit,
                                                          Layout layout, std::size_t shown) const
{
    if (format_ == Format::people)
        return std::make_unique<TableWriter<Diagnosis, DiagnosisTable>>(
            sink_, DiagnosisTable(circuit, layout, colours_, shown));
    return records<Diagnosis>(format_, sink_, [shown](const Diagnosis& diagnosis) {
        return diagnosisJson(diagnosis, shown);
    });
}

} // namespace report
