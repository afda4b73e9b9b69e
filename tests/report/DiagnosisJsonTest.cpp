#include "report/Diagnosis.h"
#include "tests/report/Diagnoses.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

using nlohmann::json;
using report::diagnosisJson;

TEST(DiagnosisJson, HasEveryFieldInItsPlace)
{
    report::Diagnosis diagnosis = answer(2, {faulty(1.0, {"a", "b"})});
    diagnosis.id = "p1";
    diagnosis.work.records = 7;
    diagnosis.work.flips = 5;
    diagnosis.work.components = 3;
    diagnosis.work.candidates = 1;
    EXPECT_EQ(diagnosisJson(diagnosis, 5),
              R"({"v":1,"id":"p1","status":"faulty","complete":true,"limit":null,"rank":2,"found":1,)"
              R"("candidates":[{"p":1.0,"rank":2,"modes":{"a.mode":"faulty","b.mode":"faulty"}}],)"
              R"("work":{"records":7,"flips":5,"components":3,"candidates":1}})"
              "\n");
}

TEST(DiagnosisJson, OfAProblemWithoutIdentifierHasNull)
{
    EXPECT_TRUE(json::parse(diagnosisJson(answer(1, {}), 5)).at("id").is_null());
}

TEST(DiagnosisJson, NamesWhatCutTheSearch)
{
    const auto limit = [](SearchLimit cut) {
        return json::parse(diagnosisJson(cutAnswer(cut, 1, {}), 5)).at("limit");
    };
    EXPECT_EQ(limit(SearchLimit::records), "records");
    EXPECT_EQ(limit(SearchLimit::seconds), "seconds");
    EXPECT_EQ(limit(SearchLimit::stopped), "interrupted");
}

TEST(DiagnosisJson, CountsAllAndShowsAsManyAsAskedFor)
{
    const report::Diagnosis diagnosis =
        answer(1, {faulty(0.5, {"a"}), faulty(0.3, {"b"}), faulty(0.2, {"c"})});
    for (const auto& [shown, size] : {std::pair{0U, 3U}, {1U, 1U}, {3U, 3U}, {9U, 3U}}) {
        const json record = json::parse(diagnosisJson(diagnosis, shown));
        EXPECT_EQ(record.at("found"), 3) << shown;
        EXPECT_EQ(record.at("candidates").size(), size) << shown;
    }
}

TEST(DiagnosisJson, RoundsProbabilitiesToSixDigits)
{
    const std::string record =
        diagnosisJson(answer(1, {faulty(1.0 / 3.0, {"a"}), faulty(2.0 / 3.0e7, {"b"})}), 0);
    EXPECT_NE(record.find("\"p\":0.333333,"), std::string::npos) << record;
    EXPECT_NE(record.find("\"p\":6.66667e-08,"), std::string::npos) << record;
}

TEST(DiagnosisJson, EscapesNames)
{
    const json record = json::parse(diagnosisJson(answer(1, {faulty(1.0, {"quo\"te\\"})}), 0));
    EXPECT_EQ(record.at("candidates").at(0).at("modes"), json({{"quo\"te\\.mode", "faulty"}}));
}
