#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <expression_text/Texts.h>

#include "Jobs.h"

using namespace tovo;
using namespace tovo::test;

namespace {

// Names as people choose them, and some that get in the way.
Job AwkwardJob()
{
    Job job;
    for (const char* const name :
         {"Length", "Width", "Unit price", "Price", "Price AND tax", "tax", "Heated?", "PI", "Max",
          "and", "a]b)c", "2nd floor", "Höhe", "A-B", "A", "B", "Twin", "twin"})
        job.AddVariable(name, name[std::string(name).size() - 1] == '?' ? 1 : 2).Value();
    job.AddFormula("Area", "V(Length)*V(Width)").Value();
    job.AddFormula("Width", "F(Area)/2").Value();
    job.AddFormula("Large?", "F(Area)>4").Value();
    job.AddTable(StepTable("Rate", FormulaNamed("Area"), {1, 2}, {10.0, 20.0})).Value();
    return job;
}

// The stored form, and each word that is unresolved with what may be typed for it.
std::string Resolved(const std::string& text, const Job& job)
{
    const TypedExpression typed = ResolveTyped(text, job).Value();
    std::string dump = typed.expression;
    for (const UnresolvedWord& word : typed.unresolved) {
        EXPECT_EQ(word.word,
                  text.substr(word.span.begin.utf8, word.span.end.utf8 - word.span.begin.utf8));
        dump += std::string("; ") + word.word + (word.isAmbiguous ? "|" : "?");
        for (const std::string& choice : word.choices)
            dump += " " + choice;
    }
    return dump;
}

std::string Completed(const std::string& marked, const Job& job,
                      const CompletionOptions& options = {})
{
    const std::size_t cursor = marked.find('|');
    const std::string text = marked.substr(0, cursor) + marked.substr(cursor + 1);
    std::string dump;
    for (const Completion& completion : Complete(text, cursor, job, options)) {
        std::string after = text;
        after.replace(completion.span.begin.utf8,
                      completion.span.end.utf8 - completion.span.begin.utf8, completion.insert);
        dump += (dump.empty() ? "" : "; ") + after;
    }
    return dump;
}

std::string SignatureOf(const std::string& marked, const Job& job)
{
    const std::size_t cursor = marked.find('|');
    const std::string text = marked.substr(0, cursor) + marked.substr(cursor + 1);
    const auto signature = SignatureAt(text, cursor, job);
    if (!signature)
        return "none";
    std::string dump = signature->text;
    if (signature->parameter) {
        const Span span = signature->parameters.at(*signature->parameter);
        dump.insert(span.end.utf8, ">");
        dump.insert(span.begin.utf8, "<");
    }
    return dump + " at " + std::to_string(signature->call.begin.utf8);
}

} // namespace

TEST(Typing, FindsNamesAndWords)
{
    struct Case {
        const char* typed;
        const char* expected;
    };
    const Case cases[] = {
        {"2*(Length+Unit price)", "2*(V(Length)+V(Unit price))"},
        {"2 * length", "2 *V(Length)"},
        {"Price AND tax", "V(Price AND tax)"},
        {"price and tax*2", "V(Price AND tax)*2"},
        {"price+tax", "V(Price)+V(tax)"},
        {"heated? and not large?", "V(Heated?)AND NOT F(Large?)"},
        {"if(yes,round(1.5),duration)", "IF(YES,ROUND(1.5),DURATION)"},
        {"\tHöhe\xC2\xA0+ 2nd floor\n", "V(Höhe)+V(2nd floor)"},
        {"A-B+A - B", "V(A-B)+V(A)-V(B)"},
        {"[Unit price]+[A-B]+[PI]+[a]]b)c]", "V(Unit price)+V(A-B)+V(PI)+V(a]b\\)c)"},
        {"V(Width)/F(Width)*T(Rate)", "V(Width)/F(Width)*T(Rate)"},
        {"V(a]b\\)c)", "V(a]b\\)c)"},
        {"Twin-twin", "V(Twin)-V(twin)"},
        {"MAX(1,2)+max (3)+Max", "MAX(1,2)+MAX (3)+V(Max)"},
        {"YES AND YES", "YES AND YES"},
        {"2 and and", "2 AND V(and)"},
        // What stays as it is, with what it could be.
        {"PI*2", "PI*2; PI| PI [PI]"},
        {"pi*2", "pi*2; pi| PI [PI]"},
        {"Width", "Width; Width| V(Width) F(Width)"},
        {"TWIN", "TWIN; TWIN| [Twin] [twin]"},
        {"LOG(2)", "LOG(2); LOG?"},
        {"sqr(2)", "sqr(2); sqr? SQRT"},
        {"Lenght*Widht", "Lenght*Widht; Lenght? Length; Widht? V(Width) F(Width)"},
        {"[Lengt]", "[Lengt]; [Lengt]? Length"},
        {"F(Length)", "F(Length); F(Length)? Length"},
        {"MAXÄ+PI2", "MAXÄ+PI2; MAXÄ? Max MAX; PI2? [PI] PI"},
        {"xyzzy?", "xyzzy?; xyzzy??"},
        // Nothing that is about names.
        {"2^3 && [ ( 1.2.3", "2^3 && [ ( 1.2.3"},
        {"", ""},
    };
    const Job job = AwkwardJob();
    for (const Case& row : cases)
        EXPECT_EQ(Resolved(row.typed, job), row.expected) << row.typed;
    EXPECT_EQ(ResolveTyped("LOG(5)", job).Value().unresolved[0].message,
              "LOG is not a function of this language.");
}

TEST(Typing, HonoursTheUsersLanguage)
{
    const UserLanguage german(",", ";", kGermanNames);
    const Job job = AwkwardJob();
    EXPECT_EQ(Resolved("wenn(Höhe>1,5 und ja; Length; ,5)", job),
              "IF(V(Höhe)>1.5 AND YES,V(Length), .5)");
    EXPECT_EQ(Resolved("if(ja;1)", job), "if(YES,1); if?");
    EXPECT_EQ(SignatureOf("wenn(ja;|", job), "WENN(condition;<value>;otherwise) at 0");
    EXPECT_EQ(Completed("ja UN|", job), "ja UND");
    EXPECT_EQ(SignatureAt("round(", 6, job)->example, "ROUND(2,675;2)");
}

// What a job shows may be typed again, and what is shown of a typed text is what the job will show.
TEST(Typing, ShownTextResolvesToItself)
{
    Job job = AwkwardJob();
    for (const char* const expression :
         {"V(Length)*V(Unit price)", "NOT V(Heated?)AND F(Large?)", "IF(F(Large?),1,T(Rate))+ 2",
          "-V(A-B)", "V(Price AND tax)-V(2nd floor)"}) {
        job.AddFormula(expression, expression).Value();
        const std::string text = job.TextOf(FormulaNamed(expression));
        const TypedExpression typed = ResolveTyped(text, job).Value();
        EXPECT_EQ(typed.text, text);
        job.SetExpression(expression, typed.expression).Value();
        EXPECT_EQ(job.TextOf(FormulaNamed(expression)), text);
        for (const TypedReference& reference : typed.references)
            EXPECT_EQ(text.substr(reference.span.begin.utf8,
                                  reference.span.end.utf8 - reference.span.begin.utf8),
                      " " + reference.object.name + " ");
    }
}

TEST(Typing, CompletesWhatFits)
{
    struct Case {
        const char* marked;
        const char* expected;
    };
    const Case cases[] = {
        {"2*Len|", "2*Length"},
        {"2*len|gth+1", "2*Length+1"},
        {"Unit pr|", "Unit price"},
        {"2*unit|", "2*Unit price"},
        {"SQ|", "SQRT("},
        {"SQ|(2)", "SQRT(2)"},
        {"2*floo|", "2*2nd floor"},
        {"[wid|]", "V(Width); F(Width)"},
        {"1+[Uni|", "1+[Unit price]"},
        {"2*PI|", "2*[PI]; 2*PI"},
        {"1>2 A|", "1>2 AND"},
        {"Length |", "Length AND; Length EQ; Length GE; Length GT; Length LE; Length LT; Length "
                     "NE; Length OR"},
        {"NOT |", "NOT Heated?; NOT Large?; NOT NO; NOT YES; NOT IF("},
        {"NOT l|", "NOT Large?"},
        {"2*y|", "2*QUANTITY"}, // no yes/no value in a product
        {"SUM(1 a|", ""},       // nor a comparison in a sum
        {"IF(1>2 a|", "IF(1>2 AND"},
        {"2*1|", ""},
    };
    const Job job = AwkwardJob();
    for (const Case& row : cases)
        EXPECT_EQ(Completed(row.marked, job, {{}, 8}), row.expected) << row.marked;
}

TEST(Typing, CompletesNoCycle)
{
    const Job job = AwkwardJob();
    EXPECT_EQ(Completed("2*Ar|", job), "2*Area");
    // Area is used by the formula Width, and by Rate.
    EXPECT_EQ(Completed("W|", job, {"Area", 9}), "V(Width); Twin; twin; POWER(");
    EXPECT_EQ(Completed("Ra|", job, {"Area", 9}), "DURATION");
    EXPECT_EQ(Completed("Ra|", job, {"New", 9}), "Rate; DURATION");
    // A formula without "?" cannot begin with a yes/no value, and one with it can.
    EXPECT_EQ(Completed("He|", job, {"New", 9}), "Höhe");
    EXPECT_EQ(Completed("He|", job, {"New?", 9}), "Heated?; Höhe");
}

TEST(Typing, TellsTheSignature)
{
    struct Case {
        const char* marked;
        const char* expected;
    };
    const Case cases[] = {
        {"round(|", "ROUND(<value>,places) at 0"},
        {"2*ROUND(Length|,1)", "ROUND(<value>,places) at 2"},
        {"ROUND(1,|1)", "ROUND(value,<places>) at 0"},
        {"ROUND(1,1,|", "ROUND(value,places) at 0"},
        {"Höhe+MAX(1,2,3,(4+|", "MAX(<value>,...) at 6"},
        {"IF(MAX(1,2)>|", "IF(<condition>,value,otherwise) at 0"},
        {"IF([a]]b)c],|", "IF(condition,<value>,otherwise) at 0"},
        {"ROUND(1)|", "none"},
        {"(1,|", "none"},
        {"|ROUND(1)", "none"},
        {")))|", "none"},
    };
    const Job job = AwkwardJob();
    for (const Case& row : cases)
        EXPECT_EQ(SignatureOf(row.marked, job), row.expected) << row.marked;
}

TEST(Typing, FunctionsAreThoseOfTheLanguage)
{
    Job job;
    int functions = 0;
    for (int code = 0; code < kTokenCount; ++code) {
        const FunctionInfo* const function = FindFunction(code);
        const bool isFunction =
            CExprToken::GetTokCodeType(code) == TT_FUNCTION && code != TOK_GROUP;
        ASSERT_EQ(function != nullptr, isFunction) << code;
        if (!function)
            continue;
        const std::string name(function->name);
        EXPECT_EQ(function, &Functions()[static_cast<std::size_t>(functions++)]);
        EXPECT_EQ(ResolveTyped(name, job).Value().expression, name);
        EXPECT_EQ(static_cast<int>(function->required), CExprToken::GetTokCodeMinArgs(code));
        const int most = CExprToken::GetTokCodeMaxArgs(code);
        EXPECT_EQ(function->repeats, most == 99) << name;
        EXPECT_EQ(function->ParameterCount(), function->repeats ? 1U : static_cast<unsigned>(most));
        job.AddFormula(name, std::string(function->example)).Value();
        job.Update();
        EXPECT_NEAR(job.ValueOf(FormulaNamed(name)).value_or(-1),
                    std::stod(std::string(function->exampleValue)), 1e-9)
            << name;
        EXPECT_TRUE(function->example.starts_with(name + "(")) << name;
    }
}

// Any bytes at all: spans lie in the text and between characters, and what was resolved stays so.
TEST(Typing, TakesAnyText)
{
    const char* const parts[] = {
        "Length", "unit",  " ",  "price", "[",   "]", "V(",           ")",
        "\\",     "1.5",   ",",  "and",   "MAX", "(", "\xFF",         "\xF0\x9F\x98\x80",
        "Höhe",   "1.2.3", "^^", "\t",    "PI",  "?", "\xEF\xBF\xBD", "\xE2\x82"};
    const Job job = AwkwardJob();
    std::mt19937 random(7);
    for (int run = 0; run < 800; ++run) {
        std::string text;
        for (auto count = random() % 12; count > 0; --count)
            text += parts[random() % std::size(parts)];
        const TypedExpression typed = ResolveTyped(text, job).Value();
        for (const UnresolvedWord& word : typed.unresolved)
            ASSERT_EQ(CString(text.substr(word.span.begin.utf8,
                                          word.span.end.utf8 - word.span.begin.utf8)),
                      CString(word.word))
                << text;
        if (typed.IsResolved()) {
            ASSERT_EQ(ResolveTyped(typed.expression, job).Value().references.size(),
                      typed.references.size())
                << text;
        }
        const std::size_t cursor = random() % (text.size() + 2);
        for (const Completion& completion : Complete(text, cursor, job))
            ASSERT_LE(completion.span.end.utf8, text.size()) << text;
        (void)SignatureAt(text, cursor, job);
    }
}

TEST(Typing, TakesLongTexts)
{
    Job job;
    std::string name = "b";
    for (int count = 0; count < 60; ++count, name += " b")
        job.AddVariable(name, 1).Value();
    for (const char* const part : {"b ", "bc ", "[", "V(", "(", "1", "[b", "b]", "a", "b+"}) {
        const std::string text = Repeated(part, 3'000);
        const auto typed = ResolveTyped(text, job);
        EXPECT_TRUE(typed || typed.Why().kind == RefusalKind::LimitExceeded);
        (void)Complete(text, text.size(), job);
        (void)SignatureAt(text, text.size(), job);
    }
}
