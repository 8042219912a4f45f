{ A tool. Not a uses clause: uses Fake in 'Fake.pas'; }
program Tool;

{$APPTYPE CONSOLE}

uses
  SysUtils, // a library unit
  Classes,
  Helpers,
  Parser in 'SUB\parser.pas' {ParserForm},
  (* Old in 'Old.pas', *)
  Quoted in 'Sub\It''s.pas',
  Lost in 'Sub\Lost.pas',
  Again in 'sub\Parser.pas',
  Vcl.Forms;

{$R *.res}

begin
  Run;
end.
