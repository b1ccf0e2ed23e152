#include "Support/TranscriptMaterial.h"

#include "ReelCore/Platform/FileSystem.h"
#include "Support/FolderTree.h"
#include "Support/Tool.h"

#include <sstream>

namespace TestSupport {

namespace {

std::string program(const std::string& name, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"-B", "-X", "utf8", transcriptProgram(name).native()});
    return outputOf("python3", arguments);
}

std::istringstream scores(const std::string& kind, const std::string& said,
                          const std::string& heard) {
    const TemporaryFolder folder;
    writeTree(folder.path(), {{"said", said}, {"heard", heard}});
    return std::istringstream(program("scores.py", {kind, (folder.path() / "said").native(),
                                                    (folder.path() / "heard").native()}));
}

}  // namespace

ReelCore::URL transcriptProgram(const std::string& name) {
    return ReelCore::URL(KELDO_TRANSCRIPT_PROGRAMS) / name;
}

std::string lackOfSpeech() {
    if (!hasTool("flite")) return "needs flite";
    const bool recordings =
        ReelCore::FileSystem::exists("/usr/share/pocketsphinx/test/data/librivox");
    return recordings ? "" : "needs pocketsphinx-testdata";
}

void makeSpeech(const ReelCore::URL& folder, const ReelCore::URL& sample) {
    program("corpus.py", {folder.native(), sample.native()});
}

void makeScriptedModel(const ReelCore::URL& model, const std::vector<std::string>& cues) {
    std::vector<std::string> arguments{model.native()};
    arguments.insert(arguments.end(), cues.begin(), cues.end());
    program("scripted_model.py", std::move(arguments));
}

void makeStubDiarization(const ReelCore::URL& folder) {
    program("stub_diarization.py", {folder.native()});
}

WordErrors wordErrors(const std::string& said, const std::string& heard) {
    WordErrors errors;
    scores("words", said, heard) >> errors.wrong >> errors.said;
    return errors;
}

TurnErrors turnErrors(const std::string& said, const std::string& heard) {
    TurnErrors errors;
    std::istringstream lines = scores("turns", said, heard);
    std::getline(lines, errors.order);
    lines >> errors.confused >> errors.missed >> errors.madeUp;
    return errors;
}

}  // namespace TestSupport
