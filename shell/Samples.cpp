#include "TextLookup.h"
#include "globals.h"

namespace globals {

namespace {

// Two versions of one small routine, so that the window opens on a comparison with something to
// show. Written with LF here for legibility; the panes get them with CR line ends.
constexpr char original[]
    = R"sample({ marks.pas - reads exam marks, one per line, from the standard input }
{ and draws how many fall into each band of ten points as a bar. }
program Marks;

{ Usage: marks < marks.txt }
{ Marks outside 0 to 100 are printed with a warning and left out of the }
{ chart, so that a typing mistake shows at once instead of hiding in }
{ one of the bands. }

const
  BandCount = 10;       { 0-9, 10-19, ... 90-100 }
  BarChar = '*';

type
  TBands = array[0..BandCount - 1] of Integer;

var
  Bands: TBands;
  Total, Skipped, Sum: Integer;

{ A mark of 100 has no band of its own: it joins the top one. }
function BandOf(Mark: Integer): Integer;
begin
  if Mark >= 100 then
    BandOf := BandCount - 1
  else
    BandOf := Mark div 10;
end;

{ Counts the marks from 0 to 100 in their bands and adds them up. }
procedure ReadMarks(var Bands: TBands; var Count, Bad, Sum: Integer);
var
  Mark: Integer;
begin
  Count := 0;
  Bad := 0;
  Sum := 0;
  while not Eof(Input) do
  begin
    ReadLn(Input, Mark);
    if (Mark < 0) or (Mark > 100) then
    begin
      WriteLn('Skipped a mark out of range: ', Mark);
      Bad := Bad + 1;
    end
    else
    begin
      Bands[BandOf(Mark)] := Bands[BandOf(Mark)] + 1;
      Count := Count + 1;
      Sum := Sum + Mark;
    end;
  end;
end;

{ One row per band: its range, then one BarChar for every mark in it; }
{ a band without marks keeps its empty row, so the ranges stay aligned. }
procedure PrintBands(const Bands: TBands);
var
  Index, Column: Integer;
begin
  for Index := 0 to BandCount - 1 do
  begin
    Write(Index * 10:3, ' to ', Index * 10 + 9:3, ' | ');
    for Column := 1 to Bands[Index] do
      Write(BarChar);
    WriteLn;
  end;
end;

begin
  FillChar(Bands, SizeOf(Bands), 0);
  ReadMarks(Bands, Total, Skipped, Sum);
  if Total = 0 then
    WriteLn('No marks were read.')
  else
    PrintBands(Bands);
  WriteLn(Total, ' marks counted, ', Skipped, ' skipped.');
end.
)sample";

constexpr char substitute[]
    = R"sample({ marks.pas - reads exam marks, one per line, from the standard input }
{ and draws how many fall into each band of ten points as a bar. }
program Marks;

const
  BandCount = 10;       { 0-9, 10-19, ... 90-100 }
  BarChar = '#';

type
  TBands = array[0..BandCount - 1] of Integer;

var
  Bands: TBands;
  Total, Skipped, Sum: Integer;

{ A mark of 100 has no band of its own: it joins the top one. }
function BandOf(Mark: Integer): Integer;
begin
  if Mark >= 100 then
    BandOf := BandCount - 1
  else
    BandOf := Mark div 10;
end;

{ Counts the marks from 0 to 100 in their bands and adds them up. }
procedure ReadMarks(var Bands: TBands; var Count, Bad, Sum: Integer);
var
  Mark: Integer;
begin
  Count := 0;
  Bad := 0;
  Sum := 0;
  while not Eof(Input) do
  begin
    ReadLn(Input, Mark);
    if (Mark < 0) or (Mark > 100) then
      Bad := Bad + 1    { counted in the summary, not shown one by one }
    else
    begin
      Bands[BandOf(Mark)] := Bands[BandOf(Mark)] + 1;
      Count := Count + 1;
      Sum := Sum + Mark;
    end;
  end;
end;

{ One row per band: its range, then one BarChar for every mark in it; }
{ a band without marks keeps its empty row, so the ranges stay aligned. }
procedure PrintBands(const Bands: TBands);
var
  Index, Column: Integer;
begin
  for Index := 0 to BandCount - 1 do
  begin
    Write(Index * 10:3, ' to ', Index * 10 + 9:3, ' | ');
    for Column := 1 to Bands[Index] do
      Write(BarChar);
    if Bands[Index] > 0 then
      Write(' (', Bands[Index], ')');
    WriteLn;
  end;
end;

begin
  FillChar(Bands, SizeOf(Bands), 0);
  ReadMarks(Bands, Total, Skipped, Sum);
  if Total = 0 then
    WriteLn('No marks were read.')
  else
    PrintBands(Bands);
  WriteLn(Total, ' marks counted, ', Skipped, ' skipped.');
  if Total > 0 then
    WriteLn('Average mark: ', Sum / Total:0:1);
end.
)sample";

QString withCrLines(const char* text)
{
    return QString::fromLatin1(text).replace(u'\n', u'\r');
}

} // namespace

QString kOriginalSampleT()
{
    return lookUp(QT_TRID_NOOP("globals.kOriginalSampleT"), withCrLines(original));
}

QString kSubstituteSampleT()
{
    return lookUp(QT_TRID_NOOP("globals.kSubstituteSampleT"), withCrLines(substitute));
}

} // namespace globals
