unit ExportUnit;

{ Writes the firing log out for spreadsheets and for the studio's web page.
  The writers sit behind IExporter so that callers never depend on one. }

interface

uses
  Windows, SysUtils, Classes;

{$I Common.inc}

type
  TExportFormat = (efCsv, efTabbed, efHtml);

  TFiringRecord = record
    FiringNo: Integer;
    Kind: string[15];
    PeakTemp, TotalMinutes: Integer;
  end;

  IExporter = interface(IUnknown)
    ['{8C41E2D7-3A95-4F60-B1C8-5D27E90A46F3}']
    function BeginExport(const FileName: string): HResult; stdcall;
    function WriteFiring(const Rec: TFiringRecord): HResult; stdcall;
    function EndExport: HResult; stdcall;
    function GetFormat: TExportFormat; stdcall;
    property Format: TExportFormat read GetFormat;
  end;

  TTextExporter = class(TInterfacedObject, IExporter)
  private
    FLines: TStringList;
    FFileName: string;
    FFormat: TExportFormat;
    FRowCount: Integer;
  protected
    function Separator: string; virtual;
    function QuoteField(const S: string): string; virtual;
    procedure WriteHeader; virtual;
    procedure WriteFooter; virtual;
  public
    { virtual, so that CreateExporter can build through a class reference }
    constructor Create(AFormat: TExportFormat); virtual;
    destructor Destroy; override;
    class function IsTextFormat(AFormat: TExportFormat): Boolean;
    { IExporter }
    function BeginExport(const FileName: string): HResult; stdcall;
    function WriteFiring(const Rec: TFiringRecord): HResult; stdcall;
    function EndExport: HResult; stdcall;
    function GetFormat: TExportFormat; stdcall;
    property RowCount: Integer read FRowCount;
  end;

  THtmlExporter = class(TTextExporter)
  protected
    function Separator: string; override;
    function QuoteField(const S: string): string; override;
    procedure WriteHeader; override;
    procedure WriteFooter; override;
  end;

  TExporterClass = class of TTextExporter;

function CreateExporter(AFormat: TExportFormat): IExporter;
function ExportToFile(const FileName: string; AFormat: TExportFormat;
  Source: TStrings): Integer;

implementation

resourcestring
  SBadLine = 'Line %d of the firing list is not in the expected form';

{ TTextExporter }

constructor TTextExporter.Create(AFormat: TExportFormat);
begin
  inherited Create;
  FFormat := AFormat;
  FLines := TStringList.Create;
end;

destructor TTextExporter.Destroy;
begin
  FLines.Free;
  inherited Destroy;
end;

class function TTextExporter.IsTextFormat(AFormat: TExportFormat): Boolean;
begin
  Result := AFormat in [efCsv, efTabbed];
end;

function TTextExporter.Separator: string;
begin
  if FFormat = efTabbed then Result := #9 else Result := ',';
end;

function TTextExporter.QuoteField(const S: string): string;
begin
  if (Pos(Separator, S) > 0) or (Pos('"', S) > 0) then
    Result := AnsiQuotedStr(S, '"')
  else
    Result := S;
end;

procedure TTextExporter.WriteHeader;
begin
  FLines.Add('Firing' + Separator + 'Kind' + Separator + 'Peak C' + Separator + 'Minutes');
end;

procedure TTextExporter.WriteFooter;
begin
end;

function TTextExporter.BeginExport(const FileName: string): HResult;
begin
  FFileName := FileName;
  FLines.Clear;
  FRowCount := 0;
  WriteHeader;
  Result := S_OK;
end;

function TTextExporter.WriteFiring(const Rec: TFiringRecord): HResult;
begin
  FLines.Add(IntToStr(Rec.FiringNo) + Separator + QuoteField(Rec.Kind) + Separator
    + IntToStr(Rec.PeakTemp) + Separator + IntToStr(Rec.TotalMinutes));
  Inc(FRowCount);
  Result := S_OK;
end;

function TTextExporter.EndExport: HResult;
begin
  WriteFooter;
  try
    FLines.SaveToFile(FFileName);
    Result := S_OK;
  except
    on EStreamError do Result := E_FAIL;   // reported by the caller
  end;
end;

function TTextExporter.GetFormat: TExportFormat;
begin
  Result := FFormat;
end;

{ THtmlExporter }

function THtmlExporter.Separator: string;
begin
  Result := '</td><td>';
end;

function THtmlExporter.QuoteField(const S: string): string;
begin
  Result := StringReplace(S, '&', '&amp;', [rfReplaceAll]);
  Result := StringReplace(Result, '<', '&lt;', [rfReplaceAll]);
end;

procedure THtmlExporter.WriteHeader;
begin
  FLines.Add('<html><head><title>' + ExportBanner + '</title></head><body><table>');
  inherited WriteHeader;
end;

procedure THtmlExporter.WriteFooter;
var
  I: Integer;
begin
  { the rows only have the cell separators so far; close them as table rows }
  for I := 1 to FLines.Count - 1 do
    FLines[I] := '<tr><td>' + FLines[I] + '</td></tr>';
  FLines.Add('</table></body></html>');
end;

{ routines }

function CreateExporter(AFormat: TExportFormat): IExporter;
var
  ExporterClass: TExporterClass;
begin
  ExporterClass := TTextExporter;
{$IFDEF KILN_EXPORT_HTML}
  if not TTextExporter.IsTextFormat(AFormat) then
    ExporterClass := THtmlExporter;
{$ENDIF}
  Result := ExporterClass.Create(AFormat);
end;

{ Splits off the text up to the next ';' }
function NextField(var S: string): string;
var
  P: Integer;
begin
  P := Pos(';', S);
  if P = 0 then P := Length(S) + 1;
  Result := Copy(S, 1, P - 1);
  Delete(S, 1, P);
end;

function ExportToFile(const FileName: string; AFormat: TExportFormat;
  Source: TStrings): Integer;
var
  Exporter: IExporter;
  Rec: TFiringRecord;
  I: Integer;
  S: string;
begin
  Exporter := CreateExporter(AFormat);
  Exporter.BeginExport(FileName);
  for I := 0 to Source.Count - 1 do
  begin
    S := Source[I];
    try
      Rec.FiringNo := StrToInt(NextField(S));
      Rec.Kind := NextField(S);
      Rec.PeakTemp := StrToInt(NextField(S));
      Rec.TotalMinutes := StrToInt(NextField(S));
    except
      on EConvertError do
        raise EConvertError.CreateFmt(SBadLine, [I + 1]);
    end;
    Exporter.WriteFiring(Rec);
  end;
  if Failed(Exporter.EndExport) then
    raise EWriteError.CreateFmt('Could not write %s', [FileName]);
  Result := Source.Count;
end;

end.
