--taluGO
-- The sales side: customers and what they order.
CREATE DATABASE SalesDesk_Sales ON PRIMARY
(NAME = N'SalesDesk_Sales', FILENAME = N'C:\OldData\SalesDesk\SalesDesk_Sales.mdf')
LOG ON (NAME = N'SalesDesk_Sales_log', FILENAME = N'C:\OldData\SalesDesk\SalesDesk_Sales_log.ldf')
GO
-- The stock side: articles, where they lie and how they move.
CREATE DATABASE SalesDesk_Stock ON PRIMARY
(NAME = N'SalesDesk_Stock', FILENAME = N'C:\OldData\SalesDesk\SalesDesk_Stock.mdf')
LOG ON (NAME = N'SalesDesk_Stock_log', FILENAME = N'C:\OldData\SalesDesk\SalesDesk_Stock_log.ldf')
GO
CREATE LOGIN SalesDeskUser WITH PASSWORD = N'Desk-2012-Stock'
GO

USE SalesDesk_Sales
GO
CREATE USER SalesDeskUser FOR LOGIN SalesDeskUser
GO
GRANT SELECT, INSERT, UPDATE, DELETE TO SalesDeskUser
GO
CREATE TABLE [dbo].[Country] (
    [Code] NVARCHAR(2) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(60) NOT NULL
)
GO
CREATE TABLE [dbo].[TaxRate] (
    [TaxRateId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(40) NOT NULL,
    [Percentage] DECIMAL(5,2) NOT NULL
)
GO
CREATE TABLE [dbo].[PaymentTerm] (
    [PaymentTermId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(40) NOT NULL,
    [Days] INT NOT NULL
)
GO
CREATE TABLE [dbo].[Customer] (
    [CustomerId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(80) NOT NULL,
    [City] NVARCHAR(60) NOT NULL,
    [CountryCode] NVARCHAR(2) NOT NULL,
    [PaymentTermId] INT NOT NULL
)
GO
CREATE TABLE [dbo].[SalesOrder] (
    [SalesOrderId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [CustomerId] INT NOT NULL,
    [OrderDate] DATETIME NOT NULL,
    [State] NVARCHAR(12) NOT NULL
)
GO
CREATE TABLE [dbo].[OrderLine] (
    [OrderLineId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [SalesOrderId] INT NOT NULL,
    [ArticleNumber] NVARCHAR(12) NOT NULL,
    [Quantity] INT NOT NULL,
    [Price] DECIMAL(10,2) NOT NULL
)
GO
CREATE TABLE [dbo].[Installation] (
    [Version] NVARCHAR(12) NOT NULL,
    [InstalledOn] DATETIME NOT NULL
)
GO
CREATE INDEX [CustomerByName] ON [dbo].[Customer] ([Name])
GO
CREATE INDEX [OrderLineByOrder] ON [dbo].[OrderLine] ([SalesOrderId])
GO
INSERT INTO [dbo].[TaxRate] ([Name], [Percentage]) VALUES
    (N'none', 0),
    (N'reduced', 7),
    (N'full', 19)
INSERT INTO [dbo].[PaymentTerm] ([Name], [Days]) VALUES
    (N'cash on delivery', 0),
    (N'a fortnight', 14),
    (N'a month', 30),
    (N'end of next month', 60)
INSERT INTO [dbo].[Installation] ([Version], [InstalledOn]) VALUES (N'3.0', GETDATE())
GO

USE SalesDesk_Stock
GO
CREATE USER SalesDeskUser FOR LOGIN SalesDeskUser
GO
GRANT SELECT, INSERT, UPDATE, DELETE TO SalesDeskUser
GO
CREATE TABLE [dbo].[Unit] (
    [UnitId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [Code] NVARCHAR(8) NOT NULL,
    [Name] NVARCHAR(40) NOT NULL
)
GO
CREATE TABLE [dbo].[ArticleGroup] (
    [ArticleGroupId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(60) NOT NULL
)
GO
CREATE TABLE [dbo].[Article] (
    [ArticleNumber] NVARCHAR(12) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(80) NOT NULL,
    [ArticleGroupId] INT NOT NULL,
    [UnitId] INT NOT NULL,
    [Price] DECIMAL(10,2) NOT NULL
)
GO
CREATE TABLE [dbo].[StoreRoom] (
    [StoreRoomId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [Name] NVARCHAR(60) NOT NULL
)
GO
CREATE TABLE [dbo].[Movement] (
    [MovementId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [ArticleNumber] NVARCHAR(12) NOT NULL,
    [StoreRoomId] INT NOT NULL,
    [Quantity] INT NOT NULL,
    [MovedOn] DATETIME NOT NULL
)
GO
CREATE INDEX [MovementByArticle] ON [dbo].[Movement] ([ArticleNumber])
GO
INSERT INTO [dbo].[StoreRoom] ([Name]) VALUES (N'Main hall')
INSERT INTO [dbo].[StoreRoom] ([Name]) VALUES (N'Owner''s cellar')
GO
