--taluGO
USE SalesDesk_Sales
GO
-- A column and the statement that fills it are two batches: a batch is compiled as a whole.
ALTER TABLE [dbo].[Customer] ADD [Discount] DECIMAL(5,2) NULL
GO
UPDATE [dbo].[Customer] SET [Discount] = 0 WHERE [Discount] IS NULL
GO
CREATE TABLE [dbo].[Note] (
    [NoteId] INT IDENTITY(1,1) NOT NULL PRIMARY KEY,
    [CustomerId] INT NOT NULL,
    [WrittenOn] DATETIME NOT NULL,
    [Body] NVARCHAR(400) NOT NULL
)
GO
CREATE INDEX [NoteByCustomer] ON [dbo].[Note] ([CustomerId])
GO

USE SalesDesk_Stock
GO
ALTER TABLE [dbo].[Article] ADD [Barcode] NVARCHAR(13) NULL
GO
ALTER TABLE [dbo].[StoreRoom] ADD [Shelves] INT NULL
GO
UPDATE [dbo].[StoreRoom] SET [Shelves] = 24 WHERE [StoreRoomId] = 1
UPDATE [dbo].[StoreRoom] SET [Shelves] = 6 WHERE [StoreRoomId] = 2
GO
