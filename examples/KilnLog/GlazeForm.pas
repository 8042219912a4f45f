unit GlazeForm;

{ Glaze recipe editor.  Recipes are kept as percentages of the dry batch;
  the grid shows the weights for the batch size the member is mixing. }

interface

uses
  Windows, Messages, SysUtils, Classes, Graphics, Controls, Forms, Dialogs,
  StdCtrls, Grids, ExtCtrls;

const
  MaxIngredients = 12;

type
  TGlazeIngredient = record
    Material: string[31];
    Percent: Double;
  end;

  TRecipeChangeEvent = procedure(Sender: TObject; Index: Integer) of object;

  TGlazeRecipeForm = class;

  { A check run before a recipe is saved; it may refuse the recipe. }
  TRecipeCheck = class(TObject)
  public
    function Check(Form: TGlazeRecipeForm; var Reason: string): Boolean; virtual; abstract;
  end;

  TTotalPercentCheck = class(TRecipeCheck)
  public
    function Check(Form: TGlazeRecipeForm; var Reason: string): Boolean; override;
  end;

  TGlazeRecipeForm = class(TForm)
    BottomPanel: TPanel;
    NameEdit: TEdit;
    IngredientGrid: TStringGrid;
    SaveButton, CloseButton: TButton;
    procedure SaveButtonClick(Sender: TObject);
    procedure IngredientGridSetEditText(Sender: TObject; ACol, ARow: Longint;
      const Value: string);
  private
    FRecipeName: string;
    FBatchGrams, FCount: Integer;
    FMinCone, FMaxCone: Integer;
    FPercents: array[0..MaxIngredients - 1] of Double;
    FOnRecipeChange: TRecipeChangeEvent;
    function GetPercent(Index: Integer): Double;
    procedure SetPercent(Index: Integer; Value: Double);
    function GetMaterial(Index: Integer): string;
    procedure SetBatchGrams(Value: Integer);
    procedure WMSize(var Message: TWMSize); message WM_SIZE;
  protected
    procedure DoRecipeChange(Index: Integer); dynamic;
    function ValidateRecipe: Boolean; virtual;
  public
    constructor Create(AOwner: TComponent); override;
    destructor Destroy; override;
    class function DefaultBatchGrams: Integer;
    procedure AddIngredient(const Material: string; Percent: Double); overload;
    procedure AddIngredient(const Ingredient: TGlazeIngredient); overload;
    function TotalPercent: Double;
    property Percents[Index: Integer]: Double read GetPercent write SetPercent;
    property Materials[Index: Integer]: string read GetMaterial; default;
  published
    property RecipeName: string read FRecipeName write FRecipeName;
    property BatchGrams: Integer read FBatchGrams write SetBatchGrams default 1000;
    property MinCone: Integer read FMinCone write FMinCone default 0;
    property MaxCone: Integer read FMaxCone write FMaxCone nodefault;
    property OnRecipeChange: TRecipeChangeEvent read FOnRecipeChange write FOnRecipeChange;
  end;

var
  GlazeRecipeForm: TGlazeRecipeForm;

function GlazeBatchWeight(Percent: Double; BatchGrams: Integer): Double; stdcall;
function PercentText(Percent: Double): string;

implementation

{$R *.DFM}

function GlazeBatchWeight(Percent: Double; BatchGrams: Integer): Double;
begin
  Result := Percent * BatchGrams / 100.0;
end;

function PercentText(Percent: Double): string;
begin
  Result := FormatFloat('0.0', Percent);
end;

(* TTotalPercentCheck *)

function TTotalPercentCheck.Check(Form: TGlazeRecipeForm; var Reason: string): Boolean;
begin
  // Colourants go on top of the 100 per cent base, so a little over is fine.
  Result := Abs(Form.TotalPercent - 100.0) < 15.0;
  if not Result then
    Reason := Format('The base adds up to %s%%', [PercentText(Form.TotalPercent)]);
end;

{ TGlazeRecipeForm }

constructor TGlazeRecipeForm.Create(AOwner: TComponent);
begin
  FBatchGrams := DefaultBatchGrams;
  inherited Create(AOwner);
end;

destructor TGlazeRecipeForm.Destroy;
begin
  FOnRecipeChange := nil;   { no change events while the grid goes away }
  inherited Destroy;
end;

class function TGlazeRecipeForm.DefaultBatchGrams: Integer;
begin
  Result := 1000;
end;

procedure TGlazeRecipeForm.AddIngredient(const Material: string; Percent: Double);
begin
  if FCount = MaxIngredients then
    raise EListError.CreateFmt('A recipe holds at most %d materials', [MaxIngredients]);
  IngredientGrid.Cells[0, FCount + 1] := Material;
  Inc(FCount);
  SetPercent(FCount - 1, Percent);
end;

procedure TGlazeRecipeForm.AddIngredient(const Ingredient: TGlazeIngredient);
begin
  AddIngredient(Ingredient.Material, Ingredient.Percent);
end;

function TGlazeRecipeForm.GetPercent(Index: Integer): Double;
begin
  Result := FPercents[Index];
end;

procedure TGlazeRecipeForm.SetPercent(Index: Integer; Value: Double);
begin
  FPercents[Index] := Value;
  IngredientGrid.Cells[1, Index + 1] := PercentText(Value);
  IngredientGrid.Cells[2, Index + 1] := FormatFloat('0', GlazeBatchWeight(Value, FBatchGrams));
  DoRecipeChange(Index);
end;

function TGlazeRecipeForm.GetMaterial(Index: Integer): string;
begin
  Result := IngredientGrid.Cells[0, Index + 1];
end;

procedure TGlazeRecipeForm.SetBatchGrams(Value: Integer);
var
  I: Integer;
begin
  if Value <= 0 then Exit;
  FBatchGrams := Value;
  for I := 0 to FCount - 1 do
    SetPercent(I, FPercents[I]);   { recomputes the grams column }
end;

function TGlazeRecipeForm.TotalPercent: Double;
var
  I: Integer;
begin
  Result := 0;
  for I := 0 to FCount - 1 do
    Result := Result + FPercents[I];
end;

procedure TGlazeRecipeForm.DoRecipeChange(Index: Integer);
begin
  if Assigned(FOnRecipeChange) then
    FOnRecipeChange(Self, Index);
end;

function TGlazeRecipeForm.ValidateRecipe: Boolean;
var
  Check: TRecipeCheck;
  Reason: string;
begin
  Check := TTotalPercentCheck.Create;
  try
    Result := Check.Check(Self, Reason);
    if not Result then
      MessageDlg(Reason, mtWarning, [mbOK], 0);
  finally
    Check.Free;
  end;
end;

procedure TGlazeRecipeForm.SaveButtonClick(Sender: TObject);
begin
  FRecipeName := Trim(NameEdit.Text);
  if (FRecipeName <> '') and ValidateRecipe then
    ModalResult := mrOk;
end;

procedure TGlazeRecipeForm.IngredientGridSetEditText(Sender: TObject; ACol,
  ARow: Longint; const Value: string);
begin
  if (ACol = 1) and (ARow >= 1) and (ARow <= FCount) then
    SetPercent(ARow - 1, StrToFloat(Value));
end;

procedure TGlazeRecipeForm.WMSize(var Message: TWMSize);
begin
  inherited;
  { the material column takes what the two number columns leave }
  if IngredientGrid <> nil then
    IngredientGrid.ColWidths[0] := IngredientGrid.ClientWidth
      - IngredientGrid.ColWidths[1] - IngredientGrid.ColWidths[2] - 4;
end;

end.
