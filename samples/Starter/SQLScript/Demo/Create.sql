--taluGO
CREATE DATABASE MyProduct_Main ON PRIMARY
(NAME = N'MyProduct_Main', FILENAME = N'C:\Data\MyProduct_Main.mdf')
LOG ON (NAME = N'MyProduct_Main_log', FILENAME = N'C:\Data\MyProduct_Main_log.ldf')
GO
USE MyProduct_Main
GO
CREATE TABLE [dbo].[Version] ([Number] NVARCHAR(12) NOT NULL)
GO
INSERT INTO [dbo].[Version] ([Number]) VALUES (N'1.0')
GO
