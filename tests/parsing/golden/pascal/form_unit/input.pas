unit Main;

interface

uses
  Windows, Messages, SysUtils, Classes, Graphics, Controls, Forms, Dialogs,
  StdCtrls, ExtCtrls, Menus;

type
  TMainForm = class(TForm)
    Panel1: TPanel;
    OkButton, CancelButton: TButton;
    MainMenu1: TMainMenu;
    FileOpenItem: TMenuItem;
    procedure FormCreate(Sender: TObject);
    procedure OkButtonClick(Sender: TObject);
    procedure FormCloseQuery(Sender: TObject; var CanClose: Boolean);
  private
    { Private declarations }
    FModified: Boolean;
    FFileName: string;
    procedure SetFileName(const Value: string);
  public
    { Public declarations }
    constructor Create(AOwner: TComponent); override;
    destructor Destroy; override;
    property FileName: string read FFileName write SetFileName;
  end;

var
  MainForm: TMainForm;

implementation

{$R *.DFM}

constructor TMainForm.Create(AOwner: TComponent);
begin
  inherited Create(AOwner);
  FModified := False;
end;

destructor TMainForm.Destroy;
begin
  inherited Destroy;
end;

procedure TMainForm.FormCreate(Sender: TObject);
begin
  Caption := Application.Title;
end;

procedure TMainForm.OkButtonClick(Sender: TObject);
begin
  Close;
end;

procedure TMainForm.FormCloseQuery(Sender: TObject; var CanClose: Boolean);
begin
  CanClose := not FModified;
end;

procedure TMainForm.SetFileName(const Value: string);
begin
  FFileName := Value;
end;

end.
