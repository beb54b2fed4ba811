// SPDX-License-Identifier: MIT
#include "app/batch_face.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include <unistd.h>

#include <QGuiApplication>

#include "app/folder_lock.h"
#include "app/process.h"
#include "app/surroundings.h"
#include "console/console_host.h"
#include "core/text.h"
#include "forms/program.h"
#include "ui/qt_canvas.h"

namespace qk {

namespace {

// Provides lines only between two devices. An empty line becomes ":next", because the console
// ignores empty lines.
class SerialLines : public LineSource {
 public:
  explicit SerialLines(LineSource& lines) : lines_(lines) {}
  bool Held = true;

  Got Next(int waitMs, std::string& line) override {
    if (Held) return Got::Nothing;
    const Got got = lines_.Next(waitMs, line);
    if (got == Got::Line && line.find_first_not_of(" \t\r") == std::string::npos) line = ":next";
    return got;
  }
  bool AtEnd() override { return !Held && lines_.AtEnd(); }
  std::string Broken() const override { return lines_.Broken(); }

 private:
  LineSource& lines_;
};

// The folder of a batch, given itself or by its batch.txt.
std::string FolderOfBatch(const std::string& path) {
  const std::filesystem::path given(path);
  return given.filename() == "batch.txt" ? given.parent_path().string() : path;
}

class BatchFace {
 public:
  BatchFace(const Options& options, ConsoleHost& host, SerialLines& lines, Program& program,
            sim::Instrument* bench)
      : folder_(FolderOfBatch(options.Batch)),
        host_(host),
        lines_(lines),
        program_(program),
        bench_(bench) {
    folder_ = std::filesystem::absolute(folder_.empty() ? "." : folder_).string();
  }

  void Start() {
    const Result<BatchDefinition> definition = LoadBatch(folder_);
    if (!definition) return Refuse(definition.Why().Text());
    program_.StartUp();
    if (program_.session().Id.PortNumber == 0) return Refuse("no instrument");
    Batch& batch = program_.batch();
    if (const Result<Done> started = batch.Start(folder_, *definition, batch.IsIn(folder_));
        !started)
      return Refuse(started.Why().Text());
    WriteLine("batch " + folder_ + ": " + batch.Yield().Text());
    SayNext();
    lines_.Held = false;
  }

  ConsoleHost::Outcome Take(const std::string& typed) {
    const std::string_view line = Trimmed(typed);
    if (line.starts_with("bench ") && bench_ != nullptr) {
      const sim::BenchReply reply = bench_->Bench(line.substr(6));
      return reply.Ok ? ConsoleHost::Outcome::Done() : ConsoleHost::Outcome::Refused(reply.Text);
    }
    if (line == ":end") {
      host_.EndProcess(0);
      return ConsoleHost::Outcome::Done();
    }
    Batch& batch = program_.batch();
    const std::string_view word = line.substr(0, line.find_first_of(" \t"));
    const std::string_view rest = Trimmed(line.substr(word.size()));
    const bool again = word == ":again", next = word == ":next";
    if (line.starts_with(':') && !again && !(next && rest.empty()))
      return Refused(line, "no command " + std::string(line) + ": :again [SERIAL], :next or :end");
    std::string serial(again ? rest : line);
    if (again && rest.empty()) serial = batch.LastSerial();
    if (again && serial.empty()) return Refused(line, "no piece has been measured yet");
    if (next) serial = batch.Next().value_or("");
    if (next && serial.empty()) return Refused("", "the pattern gives no next serial");
    lines_.Held = true;
    const Result<Batch::Device> piece = batch.Measure(serial, again);
    lines_.Held = false;
    if (!piece) return Refused(serial, piece.Why().Text());
    WriteLine(piece->Serial + " " + std::string(WordOf(piece->Outcome)) +
              (piece->Run > 1 ? " (run " + std::to_string(piece->Run) + ")" : "") + "  " +
              piece->Text);
    SayNext();
    return ConsoleHost::Outcome::Done();
  }

  // There is no user to answer boxes: each is closed by its least harmful button.
  void AnswerBox() {
    const Message* box = host_.Box();
    if (box == nullptr) return;
    std::fprintf(stderr, "qk47-vna: %s: %s\n", box->Title.c_str(), box->Text.c_str());
    switch (box->Choice) {
      case Buttons::Ok:
        return host_.Answered(Answer::Ok);
      case Buttons::YesNo:
        return host_.Answered(Answer::No);
      case Buttons::OkCancel:
      case Buttons::RetryCancel:
        break;
    }
    host_.Answered(Answer::Cancel);
  }

  int Code() {
    if (refused_) return 2;
    const BatchYield yield = program_.batch().Yield();
    WriteLine(yield.Text());
    if (!refusals_.empty()) {
      std::string list;
      for (const std::string& refusal : refusals_) list += (list.empty() ? "" : ", ") + refusal;
      WriteLine("lines refused: " + list);
    }
    return yield.Passed == yield.Devices && refusals_.empty() ? 0 : 1;
  }

 private:
  ConsoleHost::Outcome Refused(std::string_view what, const std::string& why) {
    refusals_.push_back(what.empty() ? "an empty line" : std::string(what));
    return ConsoleHost::Outcome::Refused(why);
  }
  void Refuse(const std::string& why) {
    std::fprintf(stderr, "qk47-vna: %s\n", why.c_str());
    refused_ = true;
    host_.EndProcess(2);
  }
  void SayNext() {
    if (const auto next = program_.batch().Next(); next) WriteLine("connect " + *next);
  }

  std::string folder_;
  ConsoleHost& host_;
  SerialLines& lines_;
  Program& program_;
  sim::Instrument* bench_;
  bool refused_ = false;
  std::vector<std::string> refusals_;  // lines that measured nothing
};

// Only refusals of the console's output are shown here.
void SayRefusals(const std::string& line) {
  if (!line.starts_with("error ")) return;
  const std::size_t reason = line.find(": ");
  if (reason != std::string::npos) WriteLine("refused: " + line.substr(reason + 2));
}

}  // namespace

int RunBatch(const Options& options, int& argc, char** argv) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QGuiApplication application(argc, argv);
  const EndSignals endSignals;
  DescriptorLines input(STDIN_FILENO, endSignals.Descriptor());
  SerialLines lines(input);

  const FolderLock lock(FolderOf(options));
  if (ReportsRefusal(lock)) return 2;
  FormRegistry registry;
  QtPicture picture(kPictureSize);
  Surroundings surroundings(options);
  ConsoleHost host(registry, lines, SayRefusals, WakingConsoleClock(endSignals.Descriptor()));
  Program program(registry, host.host(), surroundings.Port(), picture, {lock.Folder(), 1});
  if (sim::Instrument* bench = surroundings.Bench(); bench != nullptr) bench->Bench("follow off");
  BatchFace face(options, host, lines, program, surroundings.Bench());
  host.OnTick = [&program](TimerId timer) { program.Tick(timer); };
  host.OnEvents = [&face] {
    QCoreApplication::processEvents();
    face.AnswerBox();
  };
  host.OnSignal = [&endSignals] { return endSignals.Came(); };
  host.OnLeave = [&host] { host.EndProcess(1); };
  host.OnCommand = [&face](const std::string& line) { return face.Take(line); };
  host.Run([&face] { face.Start(); });
  const int code = face.Code();
  program.batch().End();
  surroundings.Port().Close();
  return code;
}

}  // namespace qk
