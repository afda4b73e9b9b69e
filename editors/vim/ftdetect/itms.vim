autocmd BufRead,BufNewFile *.itms setfiletype itms
