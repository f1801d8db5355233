--taluGO
USE MyProduct_Main
GO
UPDATE [dbo].[Version] SET [Number] = N'1.0'
GO
