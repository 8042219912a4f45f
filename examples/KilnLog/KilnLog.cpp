//---------------------------------------------------------------------------
#include <vcl.h>
#pragma hdrstop
USERES("KilnLog.res");
USEFORM("MainForm.cpp", FormMain);
USEFORM("ScheduleDlg.cpp", ScheduleDialog);
USEUNIT("FiringTypes.cpp");
USEFORM("GlazeForm.pas", GlazeRecipeForm); /* TForm: File Type */
USEUNIT("ExportUnit.pas");
//---------------------------------------------------------------------------
WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int)
{
    try
    {
        Application->Initialize();
        Application->Title = "Kiln Log";
        Application->CreateForm(__classid(TFormMain), &FormMain);
        Application->CreateForm(__classid(TScheduleDialog), &ScheduleDialog);
        Application->CreateForm(__classid(TGlazeRecipeForm), &GlazeRecipeForm);
        Application->Run();
    }
    catch (Exception &exception)
    {
        Application->ShowException(&exception);
    }
    return 0;
}
//---------------------------------------------------------------------------
