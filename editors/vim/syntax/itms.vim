" Highlighting of itms model files.
if exists('b:current_syntax')
  finish
endif

syntax keyword itmsDeclaration import const component system
syntax keyword itmsVariable mode cond command
syntax keyword itmsStatement law nominal fault idle initially observe for step
syntax keyword itmsWord initial any when in per from within hold otherwise lost
syntax keyword itmsOperator not and or
" Words only where a statement begins or a binding goes on, and functions; names elsewhere.
syntax match itmsStatement "\v<(input|measurable|repair)>(\s+(initial|fault)>)@!(\s+\h)@="
syntax match itmsWord "\v<(varies|over|ago|settled|noise|misread)>(\s+[0-9A-Za-z_(])@="
syntax match itmsWord "\v<(after)>(\s+\")@="
syntax match itmsOperator "\v<(abs|min|max|mean|spread|rate)>(\()@="
syntax match itmsOperator "<->\|->\|!=\|<=\|[=!&|<]"
syntax match itmsNumber "\<\d\+\(\.\d\+\)\?\([eE][+-]\?\d\+\)\?"
syntax keyword itmsUnit ms s second seconds min minute minutes h hour hours d day days week weeks month months year years contained
syntax match itmsQuantity "\(\d\|\<per\)\s*\(ms\|s\|seconds\?\|min\|minutes\?\|h\|hours\?\|d\|days\?\|weeks\?\|months\?\|years\?\)\>" contains=itmsNumber,itmsUnit,itmsWord
syntax region itmsString start=+"+ skip=+\\\\\|\\"+ end=+"+ oneline
syntax match itmsType "\(:\s*\)\@<=\u\w*"
syntax keyword itmsTodo TODO FIXME contained
syntax region itmsComment start="//" end="$" contains=itmsTodo,@Spell
syntax region itmsComment start="/\*" end="\*/" contains=itmsTodo,@Spell

highlight default link itmsDeclaration Structure
highlight default link itmsVariable StorageClass
highlight default link itmsStatement Statement
highlight default link itmsWord Keyword
highlight default link itmsOperator Operator
highlight default link itmsNumber Number
highlight default link itmsUnit Constant
highlight default link itmsString String
highlight default link itmsType Type
highlight default link itmsTodo Todo
highlight default link itmsComment Comment

setlocal commentstring=//\ %s
let b:current_syntax = 'itms'
